#include "problem_options.h"

#include <array>
#include <climits>

#include "core/chess_exception.h"
#include "engine/heuristics/heuristic_names.h"

namespace moremate {
namespace {

enum class OptionKind {
    Flag,                  // sets `nFlag`
    SortMode,              // sets the sort-indication mode `mode`
    GuiCheck,              // sets `nFlag`, optionally followed by a count of at least 1
    Threads,               // a thread count below 255
    Number,                // a number stored in `pNumber`
    Requires,              // one requirement name
    AllSolutionsRequires,  // one requirement name for all-solutions runs
    StopRelax,             // stop heuristics relaxation at the first solution
    BestDefence,           // "(" moves ";" defences ")"
};

struct TOptionRow {
    const char* sKeyword;  // upper case
    const char* sWritten;  // nullptr: never written
    OptionKind kind;
    uint32_t nFlag = 0;
    SortIndicationMode mode = SortIndicationMode::None;
    std::optional<int> ProblemEntry::*pNumber = nullptr;
};

// The writer emits the options in exactly this order.
const std::array kOptionTable = {
    TOptionRow{"NOMIRROR", " NoMirror", OptionKind::Flag, kOptNoMirror},
    TOptionRow{"MIRRORONLY", " MirrorOnly", OptionKind::Flag, kOptMirrorOnly},
    TOptionRow{"ALLSOLUTIONS", " AllSolutions", OptionKind::Flag, kOptAllSolutions},
    TOptionRow{"STOPONDUAL", " StopOnDual", OptionKind::Flag, kOptStopOnDual},
    TOptionRow{"STOPON3SOL", " StopOn3Sol", OptionKind::Flag, kOptStopOn3Sol},
    TOptionRow{"STOPON4SOL", " StopOn4Sol", OptionKind::Flag, kOptStopOn4Sol},
    TOptionRow{"USEMAINVARIANTASSORTINDICATIONS", " UseMainVariantAsSortIndications", OptionKind::SortMode, 0,
               SortIndicationMode::MainVariant},
    TOptionRow{"USEVARIANTSASSORTINDICATIONS", " UseVariantsAsSortIndications", OptionKind::SortMode, 0,
               SortIndicationMode::AllVariants},
    TOptionRow{"GUICHECK", " GUICHECK", OptionKind::GuiCheck, kOptGuiCheck},
    TOptionRow{"GUICHECKBESTDEFENCE", " GUICHECKBESTDEFENCE", OptionKind::GuiCheck, kOptGuiCheckBestDefence},
    TOptionRow{"GUICHECKBESTDEFENCEANDAUX", " GUICHECK", OptionKind::GuiCheck, kOptGuiCheckBestDefenceAndAux},
    TOptionRow{"THREADS", " THREADS", OptionKind::Threads},
    TOptionRow{"SAFEMODE", " SAFEMODE", OptionKind::Flag, kOptSafeMode},
    TOptionRow{"REQUIRES", " Requires", OptionKind::Requires},
    TOptionRow{"ONLYIFAVAIL", nullptr, OptionKind::Requires},
    TOptionRow{"ALLSOLUTIONSREQUIRES", nullptr, OptionKind::AllSolutionsRequires},
    TOptionRow{"REQUIRESSYZYGY", " RequiresSyzygy", OptionKind::Flag, kOptRequiresSyzygy},
    TOptionRow{"ALLSOLUTIONSREQUIRESSYZYGY", " AllSolutionsRequiresSyzygy", OptionKind::Flag,
               kOptAllSolutionsRequiresSyzygy},
    TOptionRow{"USEPREDEFINEDSETTINGS", " UsePredefinedSettings", OptionKind::Flag,
               kOptUsePredefinedSettings},
    TOptionRow{"HYBRIDBRUTEFORCE", " HybridBruteForce", OptionKind::Flag, kOptHybridBruteForce},
    TOptionRow{"BRUTEFORCE", " BruteForce", OptionKind::Flag, kOptBruteForce},
    TOptionRow{"DONTRELAXHEURISTICS", nullptr, OptionKind::Flag, kOptDontRelaxHeuristics},
    TOptionRow{"DONTRUNPASSTWO", nullptr, OptionKind::Flag, kOptDontRunPassTwo},
    TOptionRow{"STOPRELAXHEURISTICSONFIRSTSOLUTION", nullptr, OptionKind::StopRelax},
    TOptionRow{"SCHEDULERLEVELS", nullptr, OptionKind::Number, 0, SortIndicationMode::None,
               &ProblemEntry::m_nSchedulerLevels},
    TOptionRow{"LICHESSLEVELS", nullptr, OptionKind::Number, 0, SortIndicationMode::None,
               &ProblemEntry::m_nLichessLevels},
    TOptionRow{"GLOBREGMB", nullptr, OptionKind::Number, 0, SortIndicationMode::None,
               &ProblemEntry::m_nGlobRegMB},
    TOptionRow{"NOGLOBREG", nullptr, OptionKind::Flag, kOptNoGlobReg},
    TOptionRow{"LOOKFORBESTDEFENCESAFTER", nullptr, OptionKind::BestDefence},
};

const TOptionRow* FindRow(const std::string& keyword) {
    const std::string upper = ToUpper(keyword);
    for (const TOptionRow& row : kOptionTable)
        if (upper == row.sKeyword) return &row;
    return nullptr;
}

uint32_t ReadNumber(const std::string& keyword, CProblemLexer& lexer, uint32_t maximum) {
    const std::string lexeme = lexer.Next(true);
    const std::optional<uint32_t> value = ToNumber(lexeme);
    if (!value || *value > maximum) throw ChessException("Number expected after " + keyword + ": " + lexeme);
    return *value;
}

// A count follows only when the next lexeme is a number of at least 1; else it is read again.
int ReadOptionalCount(CProblemLexer& lexer) {
    const size_t before = lexer.Position();
    const std::optional<uint32_t> count = ToNumber(lexer.Next(true, true));
    if (count && *count >= 1 && *count <= INT_MAX) return static_cast<int>(*count);
    lexer.Rewind(before);
    return 1;
}

TVariantPair ReadBestDefenceVariant(CProblemLexer& lexer) {
    if (lexer.Next(true) != "(")
        throw ChessException("Unexpected lexem after LookForBestDefencesAfter (expected opening bracket)");
    std::string text;
    if (!lexer.TextUpTo(')', text))
        throw ChessException("Unexpected lexems after LookForBestDefencesAfter (closing bracket not found)");
    const size_t semicolon = text.find(';');
    if (semicolon == std::string::npos || text.find(';', semicolon + 1) != std::string::npos)
        throw ChessException(
            "Unexpected lexems after LookForBestDefencesAfter (expected exactly one semicolon between the "
            "brackets)");
    return {text.substr(0, semicolon), text.substr(semicolon + 1)};
}

void ReadRow(const TOptionRow& row, const std::string& keyword, CProblemLexer& lexer, ProblemEntry& entry) {
    switch (row.kind) {
        case OptionKind::Flag:
            entry.m_nOptions |= row.nFlag;
            break;
        case OptionKind::SortMode:
            entry.m_sortIndicationMode = row.mode;
            break;
        case OptionKind::GuiCheck:
            entry.m_nOptions |= row.nFlag;
            entry.m_nGuiCheckCount = ReadOptionalCount(lexer);
            break;
        case OptionKind::Threads:
            entry.m_nThreads = static_cast<uint8_t>(ReadNumber(keyword, lexer, kThreadsNotGiven));
            break;
        case OptionKind::Number:
            entry.*row.pNumber = static_cast<int>(ReadNumber(keyword, lexer, INT_MAX));
            break;
        case OptionKind::Requires:
            entry.m_vsRequires.push_back(lexer.NextIdentifier());
            break;
        case OptionKind::AllSolutionsRequires:
            entry.m_vsAllSolutionsRequires.push_back(lexer.NextIdentifier());
            break;
        case OptionKind::StopRelax:
            entry.m_bStopRelaxOnFirstSolution = true;
            break;
        case OptionKind::BestDefence:
            entry.m_mapVariantPairs[kBestDefenceVariantName] = ReadBestDefenceVariant(lexer);
            break;
    }
}

// A special-heuristic name is followed by its parameter text in brackets or by OFF.
bool ReadHeuristicOption(const std::string& keyword, CProblemLexer& lexer, ProblemEntry& entry) {
    const uint32_t bit = HeuristicFromName(keyword);
    if (!bit) return false;
    const std::string name(HeuristicName(bit));
    const std::string lexeme = lexer.Next(true);
    if (ToUpper(lexeme) == "OFF") {
        entry.m_nHeuristicsOff |= bit;
    } else if (lexeme == "(") {
        std::string parameters;
        if (!lexer.TextUpTo(')', parameters))
            throw ChessException("Unexpected lexems after " + name + " (closing bracket not found)");
        entry.m_mapHeuristicParams[bit] = parameters;
    } else {
        throw ChessException("Unexpected lexem after " + name + ": " + lexeme +
                             " (expected opening bracket or OFF)");
    }
    return true;
}

// The written keyword followed by a blank and `argument`.
std::string WithArgument(const char* written, const std::string& argument) {
    std::string text = written;
    text += ' ';
    text += argument;
    return text;
}

std::string WrittenRow(const TOptionRow& row, const ProblemEntry& entry) {
    switch (row.kind) {
        case OptionKind::Flag:
            return entry.Has(row.nFlag) ? row.sWritten : "";
        case OptionKind::SortMode:
            return entry.m_sortIndicationMode == row.mode ? row.sWritten : "";
        case OptionKind::GuiCheck:
            if (!entry.Has(row.nFlag)) return "";
            return entry.m_nGuiCheckCount > 1
                       ? WithArgument(row.sWritten, std::to_string(entry.m_nGuiCheckCount))
                       : row.sWritten;
        case OptionKind::Threads:
            return entry.m_nThreads < kThreadsNotGiven
                       ? WithArgument(row.sWritten, std::to_string(entry.m_nThreads))
                       : "";
        case OptionKind::Requires: {
            std::string text;
            for (const std::string& name : entry.m_vsRequires) text += WithArgument(row.sWritten, name);
            return text;
        }
        default:
            return "";
    }
}

}  // namespace

bool ReadOption(const std::string& keyword, CProblemLexer& lexer, ProblemEntry& entry) {
    if (const TOptionRow* row = FindRow(keyword)) {
        ReadRow(*row, keyword, lexer, entry);
        return true;
    }
    return ReadHeuristicOption(keyword, lexer, entry);
}

std::string WriteOptions(const ProblemEntry& entry) {
    std::string text;
    for (const TOptionRow& row : kOptionTable)
        if (row.sWritten) text += WrittenRow(row, entry);
    return text;
}

}  // namespace moremate
