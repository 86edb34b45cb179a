UTF-8

1 #2
{
	Description: read before the error
	FEN: 8/Q7/8/8/8/8/8/2k1K2R w K - 0 1
	Answer: a7-f2
}

2 #2 NOSUCHOPTION
{
	FEN: 8/Q7/8/8/8/8/8/2k1K2R w K - 0 1
}
