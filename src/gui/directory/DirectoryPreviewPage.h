#pragma once

#include "directory/DirectorySettings.h"
#include "widgets/Prompter.h"

#include <QPointer>
#include <QThread>
#include <QTimer>
#include <QWidget>

#include <functional>
#include <memory>

class QAbstractItemModel;
class QCheckBox;
class QLabel;
class QProgressBar;
class QPushButton;
class QSortFilterProxyModel;
class QTableView;

namespace sable {

class CSableManagerDoc;
class DirectoryEntriesModel;
class DirectoryLeaversModel;
class DirectorySyncPreview;

// The preview of a sync and its application: the directory is read and the preview made off the
// window's thread, with the entries read so far and a stop button; then every entry's fate, the
// leavers apart, and what would be created. Applying makes one step that can be undone; the
// database is written by the next save.
class DirectoryPreviewPage final : public QWidget
{
    Q_OBJECT

public:
    DirectoryPreviewPage(CSableManagerDoc& doc, Prompter prompter, QWidget* parent = nullptr);
    ~DirectoryPreviewPage() override;

    // Where a preview takes the settings from (the whole dialog's form).
    void setSettingsSource(std::function<DirectorySettings()> source) { m_source = std::move(source); }

    bool isRunning() const { return m_worker != nullptr; }
    const DirectorySyncPreview* preview() const { return m_preview.get(); }
    QString statusText() const;
    QString summaryText() const;
    QTableView* entriesView() const { return m_entriesView; }
    QTableView* leaversView() const { return m_leaversView; }
    QCheckBox* forceCheck() const { return m_force; }
    QPushButton* applyButton() const { return m_apply; }

public Q_SLOTS:
    void startPreview();
    void stop();
    void apply();

Q_SIGNALS:
    void previewFinished(bool bMade);
    // After an apply; `newMemberIds` when the administrator wants their registration mail sent.
    void mailRequested(const QList<int>& newMemberIds);

private:
    struct Job;
    void finishPreview();
    void showPreview();
    void clearPreview();
    QTableView* makeTable(QAbstractItemModel* model);

    CSableManagerDoc& m_doc;
    Prompter m_prompter;
    std::function<DirectorySettings()> m_source;
    std::shared_ptr<Job> m_job;
    QPointer<QThread> m_worker;
    QTimer m_progressTimer;
    std::unique_ptr<DirectorySyncPreview> m_preview;
    QPushButton* m_previewButton;
    QPushButton* m_stopButton;
    QProgressBar* m_progress;
    QLabel* m_status;
    QLabel* m_summary;
    QCheckBox* m_changedOnly;
    DirectoryEntriesModel* m_entries;
    QSortFilterProxyModel* m_filter;
    QTableView* m_entriesView;
    DirectoryLeaversModel* m_leavers;
    QTableView* m_leaversView;
    QCheckBox* m_force;
    QPushButton* m_apply;
};

} // namespace sable
