#include "Platform/Mrz/MrzStates.h"

#include <algorithm>
#include <array>
#include <string_view>

namespace kelvara {

namespace {

// ISO 3166-1, the additions of Doc 9303-3 section 5 and codes that older documents still bear, in alphabetical order.
constexpr std::array<std::u16string_view, 280> states { u"ABW", u"AFG", u"AGO", u"AIA", u"ALA", u"ALB", u"AND", u"ANT",
    u"ARE", u"ARG", u"ARM", u"ASM", u"ATA", u"ATF", u"ATG", u"AUS", u"AUT", u"AZE", u"BDI", u"BEL", u"BEN", u"BES",
    u"BFA", u"BGD", u"BGR", u"BHR", u"BHS", u"BIH", u"BLM", u"BLR", u"BLZ", u"BMU", u"BOL", u"BRA", u"BRB", u"BRN",
    u"BTN", u"BVT", u"BWA", u"CAF", u"CAN", u"CCK", u"CHE", u"CHL", u"CHN", u"CIV", u"CMR", u"COD", u"COG", u"COK",
    u"COL", u"COM", u"CPV", u"CRI", u"CUB", u"CUW", u"CXR", u"CYM", u"CYP", u"CZE", u"D<<", u"DEU", u"DJI", u"DMA",
    u"DNK", u"DOM", u"DZA", u"ECU", u"EGY", u"ERI", u"ESH", u"ESP", u"EST", u"ETH", u"EUE", u"FIN", u"FJI", u"FLK",
    u"FRA", u"FRO", u"FSM", u"GAB", u"GBD", u"GBN", u"GBO", u"GBP", u"GBR", u"GBS", u"GEO", u"GGY", u"GHA", u"GIB",
    u"GIN", u"GLP", u"GMB", u"GNB", u"GNQ", u"GRC", u"GRD", u"GRL", u"GTM", u"GUF", u"GUM", u"GUY", u"HKG", u"HMD",
    u"HND", u"HRV", u"HTI", u"HUN", u"IAO", u"IDN", u"IMN", u"IND", u"IOT", u"IRL", u"IRN", u"IRQ", u"ISL", u"ISR",
    u"ITA", u"JAM", u"JEY", u"JOR", u"JPN", u"KAZ", u"KEN", u"KGZ", u"KHM", u"KIR", u"KNA", u"KOR", u"KWT", u"LAO",
    u"LBN", u"LBR", u"LBY", u"LCA", u"LIE", u"LKA", u"LSO", u"LTU", u"LUX", u"LVA", u"MAC", u"MAF", u"MAR", u"MCO",
    u"MDA", u"MDG", u"MDV", u"MEX", u"MHL", u"MKD", u"MLI", u"MLT", u"MMR", u"MNE", u"MNG", u"MNP", u"MOZ", u"MRT",
    u"MSR", u"MTQ", u"MUS", u"MWI", u"MYS", u"MYT", u"NAM", u"NCL", u"NER", u"NFK", u"NGA", u"NIC", u"NIU", u"NLD",
    u"NOR", u"NPL", u"NRU", u"NTZ", u"NZL", u"OMN", u"PAK", u"PAN", u"PCN", u"PER", u"PHL", u"PLW", u"PNG", u"POL",
    u"PRI", u"PRK", u"PRT", u"PRY", u"PSE", u"PYF", u"QAT", u"REU", u"RKS", u"ROU", u"RUS", u"RWA", u"SAU", u"SDN",
    u"SEN", u"SGP", u"SGS", u"SHN", u"SJM", u"SLB", u"SLE", u"SLV", u"SMR", u"SOM", u"SPM", u"SRB", u"SSD", u"STP",
    u"SUR", u"SVK", u"SVN", u"SWE", u"SWZ", u"SXM", u"SYC", u"SYR", u"TCA", u"TCD", u"TGO", u"THA", u"TJK", u"TKL",
    u"TKM", u"TLS", u"TON", u"TTO", u"TUN", u"TUR", u"TUV", u"TWN", u"TZA", u"UGA", u"UKR", u"UMI", u"UNA", u"UNK",
    u"UNO", u"URY", u"USA", u"UTO", u"UZB", u"VAT", u"VCT", u"VEN", u"VGB", u"VIR", u"VNM", u"VUT", u"WLF", u"WSM",
    u"XBA", u"XCC", u"XCE", u"XCO", u"XCT", u"XDC", u"XEC", u"XES", u"XIM", u"XMP", u"XOM", u"XPO", u"XXA", u"XXB",
    u"XXC", u"XXX", u"YEM", u"ZAF", u"ZMB", u"ZWE" };
static_assert(std::is_sorted(states.begin(), states.end()));

} // namespace

bool isMrzState(QStringView code)
{
    return std::binary_search(
        states.begin(), states.end(), std::u16string_view(code.utf16(), static_cast<std::size_t>(code.size())));
}

MrzShapes mrzShapes(MrzDocumentFormat format, QStringView code)
{
    MrzShapes shapes;
    if (code == u"TUR" && format == MrzDocumentFormat::TD1)
        shapes = { u"A99A99999", u"<99999999999<<<", u"<<<<<<<<<<<", {}, true };
    else if (code == u"TUR" && format == MrzDocumentFormat::TD3)
        shapes.documentNumber = u"A99999999";
    else if (code == u"D<<")
        shapes.absentLetters = u"ABDEIOQSU"; // No vowels, and nothing that looks like a digit but G and Z.
    return shapes;
}

} // namespace kelvara
