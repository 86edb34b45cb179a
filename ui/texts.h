// The texts of the desktop program in its three languages, kept in one table keyed by a text
// identifier. Menus, tool tips, labels and the program's own questions look their texts up here
// whenever the language changes, so that a switch re-labels the whole window at once.
#pragma once

#include <QString>
#include <string_view>
#include <vector>

namespace moremate::ui {

struct TTextRow {
    const char* id;
    const char* polish;
    const char* english;
    const char* ukrainian;
};

// Every row of the table: the window's texts, then those of the dialogs and of the annotation,
// register and test commands.
const std::vector<TTextRow>& TextTable();
const std::vector<TTextRow>& DialogTextTable();

// The text `id` in `language` (the values of LanguageId: 0 Polish, 1 English, 2 Ukrainian; others
// give English). An unknown identifier comes back as itself, so that a gap shows on the screen.
QString UiText(std::string_view id, int language);

}  // namespace moremate::ui
