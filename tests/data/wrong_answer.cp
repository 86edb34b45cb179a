UTF-8

7 #2
{
	Description: the answer names a move that does not mate
	FEN: 8/Q7/8/8/8/8/8/2k1K2R w K - 0 1
	Answer: a7-a1
}
