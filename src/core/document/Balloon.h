#pragma once

#include <QString>

namespace sable {

class OrgNode;

// A note shown as a balloon at the place it is about: an error that refused an edit, or a hint.
// The core hands balloons out as data; the window draws them.
struct Balloon
{
    enum class Icon
    {
        Error,
        Question,
    };
    enum class Target
    {
        None,
        MemberCell, // row and column of the member list
        TreeNode, // a node of the department tree
        Rank, // a rank of the rank list (its index)
        RankRow, // a row of the rank editor's membership grid
    };

    QString title;
    QString text;
    Icon icon = Icon::Error;
    int durationMs = 3000;
    Target target = Target::None;
    int row = -1;
    int column = -1;
    const OrgNode* node = nullptr;

    static Balloon error(const QString& text)
    {
        return {QString(), text, Icon::Error, 3000, Target::None, -1, -1, nullptr};
    }
    static Balloon tip(const QString& text)
    {
        return {QStringLiteral("Tip!"), text, Icon::Question, 3000, Target::None, -1, -1, nullptr};
    }
    Balloon& atCell(int memberRow, int memberColumn)
    {
        target = Target::MemberCell;
        row = memberRow;
        column = memberColumn;
        return *this;
    }
    Balloon& atNode(const OrgNode* treeNode)
    {
        target = Target::TreeNode;
        node = treeNode;
        return *this;
    }
};

} // namespace sable
