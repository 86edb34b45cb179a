UTF-8

1 #2
{
	Description: popeye:BEISPIEL/castling.inp problem 1 (G. Sch"opfer; Neue Leipziger Ztg., 1927)
	FEN: 8/Q7/8/8/8/8/8/2k1K2R w K - 0 1
	Answer: a7-f2
}

2 #3
{
	Description: popeye:BEISPIEL/castling.inp problem 4 (B. Schwarz; 2, HORTEN, Gr. Schach-Computer-Turnier, XI/1979)
	FEN: 8/8/8/8/R7/2k5/8/4K2R w K - 0 1
	Answer: h1-h3
}

3 #3
{
	Description: popeye:BEISPIEL/castling.inp problem 5 (Peter Orlik; STERN 44/80, 23.10.1980)
	FEN: 8/8/pQ6/p1P5/P1p5/5p2/2k2P2/R3K3 w Q - 0 1
	Answer: b6-f6
}

4 #3
{
	Description: popeye:BEISPIEL/castling.inp problem 7 (Heinrich J"uhe; STERN 20/82, 13.05.1982)
	FEN: 4Q3/8/8/3pP3/3p1BN1/4p2P/6k1/4K2R w K - 0 1
	Answer: e8-c6
}

5 #4
{
	Description: popeye:BEISPIEL/castling.inp problem 12 (Alois Johandl; 2.FIDE-Turnier, 1959)
	FEN: B3k2r/2pp1p1p/1p3B2/1np1p2p/Q7/8/8/R3K3 w Qk - 0 1
	Answer: a8-h1
}

6 #4
{
	Description: popeye:BEISPIEL/castling.inp problem 13 (Erich Zepler; Die Schwalbe, Juli 1929)
	FEN: r3k3/2Qp3R/1p6/1b2K3/4p3/8/5p2/8 w q - 0 1
	Answer: e5-d4
}

7 #3
{
	Description: popeye:BEISPIEL/castling.inp problem 15 (Manfred Seidel; Schach-Aktiv, 1988)
	FEN: 1b3q1n/2pb2r1/4P3/r3pp2/3PP2p/P1NkPNP1/Q2B4/R3K2R w KQ - 0 1
	Answer: d4-d5
}

9 #2
{
	Description: popeye:TESTS/battle_play.inp problem 10
	FEN: k7/P1p5/1K6/8/N7/8/8/8 w - - 0 1
	Answer: b6-a6
}

10 #2
{
	Description: Meson db PID 210349 (M. Franken, The Observer 1920), www.bstephen.me.uk/meson/pidsearch.pl?pid=210349, key 1.g8S! [documented key g7-g8N]
	FEN: Q1B2B2/brp3PK/N2PP3/n2kN2R/R7/2P5/2n5/8 w - - 0 1
	Answer: g7-g8N
}

11 #2
{
	Description: Meson db PID 152286 (J. Moller, Good Companions 1915), w.bstephen.me.uk/meson/pidsearch.pl?pid=152286, key 1.Rh4! [documented key h5-h4]
	FEN: 3n4/1ppKN2B/8/b3PR1R/Q2Bkp2/5N1b/2P1PPr1/3r1q2 w - - 0 1
	Answer: h5-h4
}

12 #2
{
	Description: Meson db PID 215675 (S.J.A. Ekstrom, Suomen Shakki 1944), www.bstephen.me.uk/meson/pidsearch.pl?pid=215675, key 1.Sh7! [documented key f8-h7]
	FEN: 5N2/3p1Q2/3r4/2P1k3/2K2p2/2P2P2/8/8 w - - 0 1
	Answer: f8-h7
}

13 #4
{
	Description: constructed: Stockfish randomised self-play game 5 seed 11, ply 131
	FEN: 8/2P5/8/3K4/8/1k6/5R2/8 w - - 0 1
	Answer: c7-c8Q, c7-c8R, d5-c5, d5-d4, f2-e2, f2-g2, f2-h2
}

15 #5
{
	Description: constructed: Stockfish randomised self-play game 10 seed 11, ply 106
	FEN: 8/8/8/8/2B3pQ/8/1K3pk1/8 w - - 0 1
	Answer: c4-d5, h4:g4
}

16 #5
{
	Description: constructed: Stockfish randomised self-play game 13 seed 11, ply 88
	FEN: 1r6/7k/1p5p/2pNRP2/2P4p/8/6PK/2B5 w - - 0 1
	Answer: e5-e7
}

17 #3
{
	Description: constructed: Stockfish randomised self-play game 15 seed 11, ply 87
	FEN: 5Rrk/7p/1p2p3/1B1p3n/PN1P2pQ/1P2P3/2R3P1/6K1 w - - 0 1
	Answer: h4-d8, h4-e7
}

18 #3
{
	Description: constructed: Stockfish randomised self-play game 20 seed 11, ply 71
	FEN: 6k1/8/5Qp1/1p5p/3P4/P2B2P1/1R3P1P/6K1 w - - 0 1
	Answer: b2:b5, b2-c2, b2-e2, d3:g6, f6-e7, f6:g6
}

19 #5
{
	Description: constructed: Stockfish randomised self-play game 22 seed 11, ply 73
	FEN: 7k/pp4rp/8/1P1pQpB1/P2P3P/7B/5P1P/6K1 w - - 0 1
	Answer: a4-a5, b5-b6, e5-b8, e5-e8, e5-f6, g1-f1, g1-h1, h3:f5, h3-g2, h3-g4, h4-h5
}

20 #3
{
	Description: constructed: Stockfish randomised self-play game 23 seed 11, ply 104
	FEN: 5Q2/3k4/8/1R2P3/P7/1P6/1P6/2K5 w - - 0 1
	Answer: b5-b6, f8-d6, f8-f6, f8-f7
}

21 #3
{
	Description: constructed: Stockfish randomised self-play game 27 seed 11, ply 100
	FEN: 2Q1R3/1P1B4/8/7P/P2PN3/8/4k3/2K5 w - - 0 1
	Answer: b7-b8Q, c8-c2, c8-c3, c8-c7, d7-b5, e8-f8
}

22 #5
{
	Description: constructed: random sparse position (seed 21, #1), Stockfish mate-in-5 seed
	FEN: 1K6/8/k6p/8/4R3/7Q/8/3q4 w - - 0 1
	Answer: h3-c8, h3-e6
}

23 #3
{
	Description: constructed: random sparse position (seed 21, #2), Stockfish mate-in-3 seed
	FEN: 8/p7/2k2K2/3R1Q2/8/3P4/6N1/8 w - - 0 1
	Answer: f5-d7, f5-e6
}

25 #3
{
	Description: constructed: random sparse position (seed 22, #6), Stockfish mate-in-3 seed
	FEN: 3k4/B5K1/8/7R/8/Q7/5B2/8 w - - 0 1
	Answer: a3-c3, a3-c5, a3-d6, a3-f8, a7-b6, a7-b8, g7-f6, h5-c5, h5-d5, h5-h7
}

26 #3
{
	Description: constructed: random sparse position (seed 22, #7), Stockfish mate-in-3 seed
	FEN: 8/8/Q7/8/2K5/5P2/8/2k5 w - - 0 1
	Answer: a6-a2, c4-c3
}

27 #3
{
	Description: constructed: random sparse position (seed 22, #8), Stockfish mate-in-3 seed
	FEN: 8/8/3B4/6p1/p7/4K3/8/3B1N1k w - - 0 1
	Answer: d1-f3, e3-f2
}

28 #3
{
	Description: constructed: random sparse position (seed 22, #9), Stockfish mate-in-3 seed
	FEN: 2k5/4K3/7R/8/8/8/7R/8 w - - 0 1
	Answer: h2-b2, h2-d2, h6-b6
}

29 #3
{
	Description: constructed: random sparse position (seed 22, #12), Stockfish mate-in-3 seed
	FEN: 3K4/k7/4N3/1R6/8/8/1P6/8 w - - 0 1
	Answer: d8-c7, d8-c8, e6-c5, e6-d4
}

30 #5
{
	Description: constructed: random sparse position (seed 22, #13), Stockfish mate-in-5 seed
	FEN: 2k5/8/8/5K2/8/6R1/6R1/8 w - - 0 1
	Answer: f5-e4, f5-e5, f5-e6, f5-f6, f5-g6, g2-a2, g2-b2, g2-c2, g2-d2, g2-e2, g2-f2, g2-g1, g2-h2, g3-a3, g3-b3, g3-c3, g3-d3, g3-e3, g3-f3, g3-g4, g3-g5, g3-g6, g3-g7, g3-g8, g3-h3
}

31 #3
{
	Description: constructed: random sparse position (seed 22, #14), Stockfish mate-in-3 seed
	FEN: 8/k2K4/6R1/4P3/3N4/p4P2/8/8 w - - 0 1
	Answer: d7-c7, d7-c8
}

32 #3
{
	Description: constructed: random sparse position (seed 22, #15), Stockfish mate-in-3 seed
	FEN: 1k4r1/3R4/1K5N/7n/8/8/4B3/4R3 w - - 0 1
	Answer: d7-b7, h6:g8
}

34 #4
{
	Description: constructed: random sparse position (seed 22, #17), Stockfish mate-in-4 seed
	FEN: 8/6P1/P6p/7N/8/2p5/k1K5/8 w - - 0 1
	Answer: c2:c3, g7-g8Q, g7-g8R
}

35 #3
{
	Description: constructed: random sparse position (seed 22, #18), Stockfish mate-in-3 seed
	FEN: 8/1R4P1/8/8/2K5/4B3/8/5k2 w - - 0 1
	Answer: b7-b2, c4-d3
}

36 #3
{
	Description: constructed: random sparse position (seed 22, #19), Stockfish mate-in-3 seed
	FEN: 8/1K3n1Q/4k3/2P3b1/Bp6/6Q1/8/8 w - - 0 1
	Answer: a4-b3
}

37 #5
{
	Description: constructed: random sparse position (seed 22, #21), Stockfish mate-in-5 seed
	FEN: 3R3N/3P4/8/8/8/4K3/6k1/8 w - - 0 1
	Answer: d8-a8, d8-b8, d8-c8, d8-e8, d8-f8, d8-g8, e3-d3, h8-f7, h8-g6
}

38 #4
{
	Description: constructed: random sparse position (seed 22, #23), Stockfish mate-in-4 seed
	FEN: 1k6/8/3K4/8/3Q4/8/8/8 w - - 0 1
	Answer: d4-a1, d4-a4, d4-b2, d4-b4, d4-b6, d4-c3, d4-c4, d4-c5, d4-d1, d4-d2, d4-d3, d4-d5, d4-e3, d4-e4, d4-e5, d4-f2, d4-f4, d4-f6, d4-g1, d4-g4, d4-g7, d4-h4, d4-h8, d6-c5, d6-c6, d6-d7
}

39 #4
{
	Description: constructed: random sparse position (seed 22, #24), Stockfish mate-in-4 seed
	FEN: 6r1/3p3P/8/2B5/8/2K5/8/2k5 w - - 0 1
	Answer: h7:g8Q, h7:g8R
}

40 #3
{
	Description: constructed: random sparse position (seed 22, #27), Stockfish mate-in-3 seed
	FEN: 8/8/8/8/P7/3PQ3/3K4/k7 w - - 0 1
	Answer: d2-c1, d2-c2, d2-c3, e3-b6
}

41 #3
{
	Description: constructed: random sparse position (seed 22, #28), Stockfish mate-in-3 seed
	FEN: 8/5r2/K5B1/p7/k7/5N2/3P4/5Q2 w - - 0 1
	Answer: g6-c2, g6:f7
}

42 #6
{
	Description: constructed: random sparse position (seed 23, #1), Stockfish mate-in-6 seed
	FEN: 1k2K3/8/5R2/R4r2/8/5P2/5P2/8 w - - 0 1
	Answer: a5:f5, f6:f5
}

43 #4
{
	Description: constructed: random sparse position (seed 23, #5), Stockfish mate-in-4 seed
	FEN: 8/3P3k/8/7N/N6K/6P1/4r3/3Q4 w - - 0 1
	Answer: d1-d3, d1:e2
}

44 #4
{
	Description: constructed: random sparse position (seed 23, #8), Stockfish mate-in-4 seed
	FEN: 8/4K2k/5n2/1N1N4/8/2pR4/8/8 w - - 0 1
	Answer: e7:f6
}

45 #4
{
	Description: constructed: random sparse position (seed 23, #9), Stockfish mate-in-4 seed
	FEN: 8/4B3/1P5Q/2B5/8/1K1PB2n/8/4k3 w - - 0 1
	Answer: b3-c2, e3-c1, e3-d2, e3-f2, h6-f6, h6-f8, h6:h3
}

46 #4
{
	Description: constructed: random sparse position (seed 23, #11), Stockfish mate-in-4 seed
	FEN: 3k3B/1K2p2r/5p2/1Q6/8/8/2Bp4/8 w - - 0 1
	Answer: b5-b6, b5-d5, b7-c6, c2-a4
}

47 #4
{
	Description: constructed: random sparse position (seed 23, #12), Stockfish mate-in-4 seed
	FEN: 8/7P/p7/6B1/5K2/8/8/6k1 w - - 0 1
	Answer: f4-f3, h7-h8Q
}

49 #4
{
	Description: constructed: Stockfish randomised self-play game 8 seed 11, ply 124; stipulation shortened by one move (Stockfish had found mate in 5)
	FEN: 8/7P/2Q5/1K3p2/8/5B2/5k2/8 w - - 0 1
	Answer: b5-a4, b5-a5, b5-a6, b5-b4, b5-b6, c6-c2, c6-c3, c6-c4, f3-d1, f3-g2, f3-h1, h7-h8Q
}

51 #3
{
	Description: constructed: random sparse position (seed 23, #7), Stockfish mate-in-4 seed; stipulation shortened by one move (Stockfish had found mate in 4)
	FEN: 4R1K1/1N6/7k/5B2/2R5/8/8/8 w - - 0 1
	Answer: c4-g4, e8-e5, f5-b1, f5-c2, f5-c8, f5-d3, f5-d7, f5-h3, f5-h7, g8-f7
}

52 #3
{
	Description: constructed: Stockfish randomised self-play game 2 seed 11, ply 63; stipulation shortened by one move (Stockfish had found mate in 4)
	FEN: 8/2B2k2/p2P4/5pQp/PPp5/5bP1/5PBP/R6K w - - 0 1
	Answer: g2:f3
}

53 #2
{
	Description: Meson db PID 75900 (K. Forster, Die Schwalbe 2007), w.bstephen.me.uk/meson/pidsearch.pl?pid=75900, key 1.Sg6! [documented key f4-g6]
	FEN: 8/7p/1N1Qbp1B/6nR/4kN2/2Pp2K1/2np4/8 w - - 0 1
	Answer: f4-g6
}

54 #2
{
	Description: Meson db PID 199253 (J.I. Hannelius, Suomen Shakki 1987), w.bstephen.me.uk/meson/pidsearch.pl?pid=199253, key 1.Qh2! [documented key c2-h2]
	FEN: 8/8/6R1/1n1bkB2/3r4/1N2NPK1/1rQ5/B7 w - - 0 1
	Answer: c2-h2
}

55 #2
{
	Description: Meson db PID 148590 (N.J. Maximov, British Chess Magazine 1901), bstephen.me.uk/meson/pidsearch.pl?pid=148590, key 1.Qh8! [documented key a8-h8]
	FEN: Q7/8/2PP3K/5p2/6k1/8/5B2/4N3 w - - 0 1
	Answer: a8-h8
}
