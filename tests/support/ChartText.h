#pragma once

#include "document/CSableManagerDoc.h"
#include "document/ChartJson.h"
#include "orgchart/OrgChart.h"

#include <QString>
#include <QTest>

// The tree as one line, for comparing charts in tests: departments by name with their children in
// brackets, members as #K_MemberID with their rank after a colon when they have one.
// Example: "본사[#1:2 영업부[#2] #3]".
inline QString chartText(const sable::OrgChart& chart, const sable::OrgNode* node = nullptr)
{
    const sable::OrgNode* parent = node ? node : chart.invisibleRoot();
    QStringList parts;
    for (int i = 0; i < parent->childCount(); ++i) {
        const sable::OrgNode* child = parent->child(i);
        if (child->isMember()) {
            parts << (child->rankId() >= 0 ? QStringLiteral("#%1:%2").arg(child->memberId()).arg(child->rankId())
                                           : QStringLiteral("#%1").arg(child->memberId()));
            continue;
        }
        parts << (child->childCount() ? child->name() + u'[' + chartText(chart, child) + u']' : child->name());
    }
    return parts.join(u' ');
}

// Everything a save would write, plus what only memory holds: the deletion lists, members without a
// login ID, and the modified flag; for checking that an undo gives back exactly the document before.
inline QByteArray snapshot(const sable::CSableManagerDoc& doc)
{
    QByteArray out = sable::ChartJson::write(doc.tables());
    for (const sable::MemberRecord& m : doc.chart().members())
        out += m.MemberID.isEmpty() ? QByteArray("no-id:") + QByteArray::number(m.K_MemberID) : QByteArray();
    for (const int id : doc.deletedMembers())
        out += " dm" + QByteArray::number(id);
    for (const int id : doc.deletedGroups())
        out += " dg" + QByteArray::number(id);
    return out + (doc.isModified() ? " modified" : " clean");
}

// Undo gives back exactly `before`, redo exactly `after`; undoing that step and the one before it
// (the first edit since the load) leaves nothing unsaved.
inline void verifyUndoRedo(sable::CSableManagerDoc& doc, const QByteArray& before, const QByteArray& after)
{
    doc.history().undo();
    QCOMPARE(snapshot(doc), before);
    doc.history().redo();
    QCOMPARE(snapshot(doc), after);
    doc.history().undo();
    doc.history().undo();
    QVERIFY(!doc.isModified());
}
