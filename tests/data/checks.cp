UTF-8

1 #3 GUICHECKBESTDEFENCEANDAUX LookForBestDefencesAfter (1. Bd7-b5+; Ke2-e3, Ke2-f3)
//!VARIANTS
//!Main variant: 1. Bd7-b5+ Ke2-e3 2. Qc8-h3+
//!ENDVARIANTS
{
	Description: every check after the run holds
	FEN: 2Q1R3/1P1B4/8/7P/P2PN3/8/4k3/2K5 w - - 0 1
	Answer: b7-b8Q, c8-c2, c8-c3, c8-c7, d7-b5, e8-f8
}

2 #3 GUICHECKBESTDEFENCE Requires KQK RequiresSyzygy LookForBestDefencesAfter (1. Qf8-d6+; Kd7-e8, Kd7-c8)
//!VARIANTS
//!Main variant: 1. Qf8-d6+ Kd7-c8
//!ENDVARIANTS
{
	Description: requirements not available, a wrong best defence, a defence too many
	FEN: 5Q2/3k4/8/1R2P3/P7/1P6/1P6/2K5 w - - 0 1
	Answer: f8-d6
}

3 #3 GUICHECKBESTDEFENCEANDAUX LookForBestDefencesAfter (1. Bd7-b5+; Ke2-f3, Ke2-e3)
//!VARIANTS
//!Main variant: 1. Bd7-b5+ Ke2-e3 2. Qc8-c3+
//!ENDVARIANTS
{
	Description: a continuation that does not mate soonest
	FEN: 2Q1R3/1P1B4/8/7P/P2PN3/8/4k3/2K5 w - - 0 1
	Answer: b7-b8Q, c8-c2, c8-c3, c8-c7, d7-b5, e8-f8
}

4 #3
//@SortIndications: Re8-e5, Qc8-c2+
{
	Description: the sort indications put two moves first
	FEN: 2Q1R3/1P1B4/8/7P/P2PN3/8/4k3/2K5 w - - 0 1
	ExpectedSortWhiteMovesOnly: e8-e5, c8-c2
}

5 #3
//@SortIndications: Re8-e5, Qc8-c2+
{
	Description: an order that the solver does not follow
	FEN: 2Q1R3/1P1B4/8/7P/P2PN3/8/4k3/2K5 w - - 0 1
	ExpectedSortWhiteMoves: c8-c2, e8-e5
}
