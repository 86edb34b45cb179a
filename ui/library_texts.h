// The messages of the libraries below the window (exceptions of the chess core, the file readers,
// the registers, the precalculated data and the online tablebase; the solving run's texts; the
// settings' notes) come in English. The window shows them through LibraryText, which gives the
// Polish or Ukrainian form of every message it knows and leaves any other text as it is.
#pragma once

#include <string>
#include <string_view>
#include <vector>

namespace moremate::ui {

struct TLibraryTextRow {
    const char* english;
    const char* polish;
    const char* ukrainian;
};

// Every known message. A row matches a message that starts with its English text; what follows
// (a file name, a number) is kept. Rows starting with a blank are endings of messages: they
// match a message that ends with them; those that end with a blank too are middle parts, found
// anywhere in a message that has no known start or ending.
const std::vector<TLibraryTextRow>& LibraryTextTable();

// `text` in `language` (the values of LanguageId), line by line. A line may carry a label
// before the message ("file.cp: Unexpected end of file."): the label is kept. Lines without a
// known message, and every line in English, come back unchanged.
std::string LibraryText(std::string_view text, int language);

}  // namespace moremate::ui
