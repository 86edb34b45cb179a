#include "problem_tags.h"

#include <algorithm>

namespace moremate {
namespace {

std::vector<std::string>& TagsOf(ProblemEntry& entry) {
    return entry.m_annotations.vsTags;
}

void Inform(const TUserQuestions& questions, const std::string& text) {
    if (questions.pReporter != nullptr)
        questions.pReporter->Report(ReportTitle(ReportKind::Information, questions.nLanguage), text,
                                    ReportButtons::Ok);
}

}  // namespace

const std::vector<std::string>& Tags(const ProblemEntry& entry) {
    return entry.m_annotations.vsTags;
}

bool HasTag(const ProblemEntry& entry, const std::string& tag) {
    return std::ranges::find(Tags(entry), tag) != Tags(entry).end();
}

bool AddTag(ProblemEntry& entry, const std::string& tag) {
    if (tag.empty() || HasTag(entry, tag)) return false;
    TagsOf(entry).push_back(tag);
    return true;
}

bool RemoveTag(ProblemEntry& entry, const std::string& tag) {
    return std::erase(TagsOf(entry), tag) > 0;
}

std::vector<std::string> CollectionTags(const std::vector<ProblemEntry>& collection) {
    std::vector<std::string> tags;
    for (const ProblemEntry& entry : collection)
        for (const std::string& tag : Tags(entry))
            if (std::ranges::find(tags, tag) == tags.end()) tags.push_back(tag);
    return tags;
}

bool AddTagAsking(ProblemEntry& entry, const std::string& tag, const std::vector<ProblemEntry>& collection,
                  const TUserQuestions& questions) {
    if (tag.empty() || HasTag(entry, tag)) return false;
    const std::vector<std::string> used = CollectionTags(collection);
    if (std::ranges::find(used, tag) == used.end() &&
        !AskYesNo(questions, "Are you sure you want to create a new tag:\n" + tag))
        return false;
    return AddTag(entry, tag);
}

bool RemoveTagAsking(ProblemEntry& entry, const std::string& tag, const TUserQuestions& questions) {
    if (Tags(entry).empty()) {
        Inform(questions, "No tags are assigned to this problem");
        return false;
    }
    if (!HasTag(entry, tag) ||
        !AskYesNo(questions, "Are you sure you want to delete the following tag from this problem?\n" + tag))
        return false;
    return RemoveTag(entry, tag);
}

}  // namespace moremate
