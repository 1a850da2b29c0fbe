#pragma once

#include "document/Balloon.h"

#include <QString>

#include <functional>
#include <optional>

namespace sable {

class OrgNode;

// What an edit tells the window: whether the document changed, a balloon or a message to show,
// and what to select or open for editing.
struct EditOutcome
{
    bool bChanged = false;
    std::optional<Balloon> balloon;
    QString message; // for a message box
    OrgNode* node = nullptr; // the node to select (or to rename, after adding a department)
    int row = -1; // the member row to select
    int rankIndex = -1; // the rank to select (or to rename, after adding one)

    static EditOutcome changed() { return EditOutcome {true, std::nullopt, {}, nullptr, -1, -1}; }
    static EditOutcome refused(const Balloon& balloon) { return EditOutcome {false, balloon, {}, nullptr, -1, -1}; }
};

// A Yes/No question to the administrator; true for Yes.
using AskYesNo = std::function<bool(const QString& question)>;

} // namespace sable
