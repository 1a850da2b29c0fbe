#include "document/EditHistory.h"

#include "document/CSableManagerDoc.h"

namespace sable {

EditHistory::EditHistory(CSableManagerDoc& doc)
    : m_doc(doc)
{ }

EditHistory::~EditHistory() = default;

void EditHistory::push(std::unique_ptr<EditStep> step)
{
    if (m_cleanIndex > m_index)
        m_cleanIndex = -1;
    m_steps.erase(m_steps.begin() + m_index, m_steps.end());
    m_steps.push_back(std::move(step));
    ++m_index;
    Q_EMIT changed();
}

QString EditHistory::undoText() const
{
    return canUndo() ? m_steps[static_cast<size_t>(m_index - 1)]->description : QString();
}

QString EditHistory::redoText() const
{
    return canRedo() ? m_steps[static_cast<size_t>(m_index)]->description : QString();
}

void EditHistory::undo()
{
    if (!canUndo())
        return;
    EditStep& step = *m_steps[static_cast<size_t>(--m_index)];
    for (auto change = step.changes.rbegin(); change != step.changes.rend(); ++change)
        (*change)->undo(m_doc);
    applyModified();
    Q_EMIT changed();
}

void EditHistory::redo()
{
    if (!canRedo())
        return;
    EditStep& step = *m_steps[static_cast<size_t>(m_index++)];
    for (const auto& change : step.changes)
        change->redo(m_doc);
    applyModified();
    Q_EMIT changed();
}

void EditHistory::markClean()
{
    m_cleanIndex = m_index;
    Q_EMIT changed();
}

void EditHistory::clear()
{
    m_steps.clear();
    m_index = 0;
    m_cleanIndex = 0;
    Q_EMIT changed();
}

// Within the edits made since the last save each step knows the flag it left; back at the saved
// state nothing is unsaved; before it (steps the save had written) everything undone is unsaved.
void EditHistory::applyModified()
{
    if (m_index == m_cleanIndex)
        m_doc.setModified(false);
    else if (m_cleanIndex < 0 || m_index < m_cleanIndex)
        m_doc.setModified(true);
    else
        m_doc.setModified(m_steps[static_cast<size_t>(m_index - 1)]->bModifiedAfter);
}

} // namespace sable
