UTF-8

1 #2
{
	Description: a mate in two with castling around
	FEN: 8/Q7/8/8/8/8/8/2k1K2R w K - 0 1
	Answer: a7-f2
}

2 #3
{
	Description: four keys
	FEN: 8/8/8/8/P7/3PQ3/3K4/k7 w - - 0 1
	Answer: d2-c1, d2-c2, d2-c3, e3-b6
}

3 #2
{
	Description: no solution
	FEN: 8/8/Q7/8/2K5/5P2/8/2k5 w - - 0 1
}

4 s#2
{
	Description: a selfmate is not solved
	FEN: 8/8/8/8/8/8/1Q6/k1K5 w - - 0 1
}
