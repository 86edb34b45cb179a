UTF-8

5 #3 UseMainVariantAsSortIndications
//#TAGS
//#2nd prize
//#Zagoruiko
//!VARIANTS
//!Main variant: 1. Qa7-a3+ Kc1-c2 2. Qa3-a2+
//!{Variant1}: 1. Rh1-h2
//!ENDVARIANTS
//@SortIndications: ~1. Qa7-a1+, Rh1-h2; e1-e2
//@tmpreg=4711
{
	Description: Sam Loyd, 1st prize, 1859 (yacpdb 12345)
	FEN: 8/Q7/8/8/8/8/8/2k1K2R w K - 0 1
	Answer: a7-f2
}
