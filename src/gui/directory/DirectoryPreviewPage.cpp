#include "directory/DirectoryPreviewPage.h"

#include "Messages.h"
#include "directory/DirectoryPreviewModels.h"
#include "directory/DirectoryReader.h"
#include "directory/DirectorySyncPreview.h"
#include "document/CSableManagerDoc.h"
#include "document/DirectorySyncEdits.h"
#include "userimport/ImportPreviewTexts.h"
#include "widgets/Heading.h"

#include <QCheckBox>
#include <QHBoxLayout>
#include <QHeaderView>
#include <QLabel>
#include <QProgressBar>
#include <QPushButton>
#include <QRegularExpression>
#include <QSortFilterProxyModel>
#include <QTableView>
#include <QThread>
#include <QVBoxLayout>

#include <atomic>

namespace sable {
using ImportPreviewTexts::shortList;

// What the worker shares with the window: the stop flag, how far it is, and what it made.
struct DirectoryPreviewPage::Job
{
    std::atomic<int> bContinue {1};
    std::atomic<int> entriesRead {0};
    std::unique_ptr<DirectorySyncPreview> preview;
    QString problem;
};

DirectoryPreviewPage::DirectoryPreviewPage(CSableManagerDoc& doc, Prompter prompter, QWidget* parent)
    : QWidget(parent)
    , m_doc(doc)
    , m_prompter(std::move(prompter))
    , m_previewButton(new QPushButton(Msg::kDirPreviewButton, this))
    , m_stopButton(new QPushButton(Msg::kDirStopButton, this))
    , m_progress(new QProgressBar(this))
    , m_status(new QLabel(Msg::kDirPreviewIntro, this))
    , m_summary(new QLabel(this))
    , m_changedOnly(new QCheckBox(Msg::kDirChangedOnly, this))
    , m_entries(new DirectoryEntriesModel(this))
    , m_filter(new QSortFilterProxyModel(this))
    , m_entriesView(makeTable(m_filter))
    , m_leavers(new DirectoryLeaversModel(this))
    , m_leaversView(makeTable(m_leavers))
    , m_force(new QCheckBox(Msg::kDirForceCheck, this))
    , m_apply(new QPushButton(Msg::kDirApplyButton, this))
{
    m_status->setObjectName(QStringLiteral("status"));
    m_status->setWordWrap(true);
    m_summary->setObjectName(QStringLiteral("summary"));
    m_summary->setWordWrap(true);
    m_progress->setRange(0, 0);
    m_progress->hide();
    m_stopButton->setEnabled(false);
    m_filter->setSourceModel(m_entries);
    m_filter->setFilterKeyColumn(DirectoryEntriesModel::FateColumn);
    m_changedOnly->setChecked(true);
    m_filter->setFilterRegularExpression(QStringLiteral("^(?!%1$)").arg(Msg::kImportFateUnchanged));
    m_entriesView->setObjectName(QStringLiteral("entries"));
    m_leaversView->setObjectName(QStringLiteral("leavers"));
    for (const auto& [column, width] :
        {std::pair(DirectoryEntriesModel::FateColumn, 60), std::pair(DirectoryEntriesModel::IdColumn, 90),
            std::pair(DirectoryEntriesModel::NameColumn, 90), std::pair(DirectoryEntriesModel::DepartmentColumn, 260),
            std::pair(DirectoryEntriesModel::ReasonColumn, 200)})
        m_entriesView->setColumnWidth(column, width);
    for (const auto& [column, width] : {std::pair(DirectoryLeaversModel::IdColumn, 90),
             std::pair(DirectoryLeaversModel::NameColumn, 90), std::pair(DirectoryLeaversModel::DepartmentColumn, 260),
             std::pair(DirectoryLeaversModel::ReasonColumn, 150)})
        m_leaversView->setColumnWidth(column, width);
    m_force->setEnabled(false);
    m_apply->setEnabled(false);
    m_apply->setDefault(true);

    auto* buttons = new QHBoxLayout;
    buttons->addWidget(m_previewButton);
    buttons->addWidget(m_stopButton);
    buttons->addWidget(m_progress, 2);
    buttons->addStretch(1);
    auto* applyRow = new QHBoxLayout;
    applyRow->addWidget(m_force);
    applyRow->addStretch(1);
    applyRow->addWidget(m_apply);
    auto* layout = new QVBoxLayout(this);
    layout->addLayout(buttons);
    layout->addWidget(m_status);
    layout->addWidget(m_summary);
    layout->addWidget(m_changedOnly);
    layout->addWidget(m_entriesView, 3);
    layout->addWidget(makeHeading(Msg::kDirLeaversHeading, this));
    layout->addWidget(m_leaversView, 1);
    layout->addLayout(applyRow);

    connect(m_previewButton, &QPushButton::clicked, this, &DirectoryPreviewPage::startPreview);
    connect(m_stopButton, &QPushButton::clicked, this, &DirectoryPreviewPage::stop);
    connect(m_apply, &QPushButton::clicked, this, &DirectoryPreviewPage::apply);
    connect(m_changedOnly, &QCheckBox::toggled, this, [this](bool bOnly) {
        m_filter->setFilterRegularExpression(
            bOnly ? QStringLiteral("^(?!%1$)").arg(Msg::kImportFateUnchanged) : QString());
    });
    m_progressTimer.setInterval(200);
    connect(&m_progressTimer, &QTimer::timeout, this,
        [this] { m_status->setText(Msg::kDirReading.arg(m_job ? m_job->entriesRead.load() : 0)); });
}

DirectoryPreviewPage::~DirectoryPreviewPage()
{
    if (m_worker) {
        m_job->bContinue = 0;
        m_worker->disconnect(this);
        m_worker->wait();
    }
    clearPreview();
}

QTableView* DirectoryPreviewPage::makeTable(QAbstractItemModel* model)
{
    auto* view = new QTableView(this);
    view->setModel(model);
    view->verticalHeader()->hide();
    view->verticalHeader()->setDefaultSectionSize(20);
    view->setSelectionBehavior(QAbstractItemView::SelectRows);
    view->setEditTriggers(QAbstractItemView::NoEditTriggers);
    view->horizontalHeader()->setStretchLastSection(true);
    return view;
}

QString DirectoryPreviewPage::statusText() const
{
    return m_status->text();
}

QString DirectoryPreviewPage::summaryText() const
{
    return m_summary->text();
}

void DirectoryPreviewPage::startPreview()
{
    if (m_worker || !m_source)
        return;
    clearPreview();
    m_job = std::make_shared<Job>();
    // The chart is read while the dialog holds the window: nothing edits it meanwhile.
    m_worker = QThread::create([job = m_job, settings = m_source(), &doc = m_doc] {
        const std::optional<DirectorySnapshot> snapshot = DirectoryReader(settings).read(
            [&job](int read) {
                job->entriesRead = read;
                return job->bContinue.load() != 0;
            },
            &job->problem);
        if (snapshot)
            job->preview = std::make_unique<DirectorySyncPreview>(
                DirectorySyncPreview::make(doc.chart(), doc.ranks(), doc.directoryLinks(), *snapshot,
                    {settings.leaverThresholdPercent, settings.passwordLength, settings.passwordAlphabet}));
    });
    m_worker->setParent(this);
    connect(m_worker, &QThread::finished, this, &DirectoryPreviewPage::finishPreview);
    m_previewButton->setEnabled(false);
    m_stopButton->setEnabled(true);
    m_progress->show();
    m_status->setText(Msg::kDirReading.arg(0));
    m_progressTimer.start();
    m_worker->start();
}

void DirectoryPreviewPage::stop()
{
    if (m_job)
        m_job->bContinue = 0;
}

void DirectoryPreviewPage::finishPreview()
{
    m_progressTimer.stop();
    m_worker->deleteLater();
    m_worker = nullptr;
    m_previewButton->setEnabled(true);
    m_stopButton->setEnabled(false);
    m_progress->hide();
    m_preview = std::move(m_job->preview);
    const QString problem = m_job->problem;
    m_job.reset();
    if (!m_preview) {
        m_status->setText(problem);
        Q_EMIT previewFinished(false);
        return;
    }
    showPreview();
    Q_EMIT previewFinished(true);
}

void DirectoryPreviewPage::showPreview()
{
    const DirectorySyncPreview& sync = *m_preview;
    const ImportPreview& p = sync.preview();
    using Fate = ImportRow::Fate;
    QStringList lines {Msg::kDirSummary.arg(p.count(Fate::New))
                           .arg(p.count(Fate::Update))
                           .arg(p.count(Fate::Unchanged))
                           .arg(p.count(Fate::Refused))
                           .arg(sync.leaverCount()),
        Msg::kDirSummaryMore.arg(p.removalCount())
            .arg(p.newDepartmentPaths().size())
            .arg(p.newRankNames().size())
            .arg(sync.adoptedCount())
            .arg(sync.disabledEntries())
            .arg(sync.entryCount())
            .arg(sync.searchSeconds(), 0, 'f', 2)};
    if (!p.newDepartmentPaths().isEmpty())
        lines << Msg::kImportDepartmentField + QStringLiteral(": ") + shortList(p.newDepartmentPaths());
    if (!p.newRankNames().isEmpty())
        lines << Msg::kImportRankField + QStringLiteral(": ") + shortList(p.newRankNames());
    m_summary->setText(lines.join(u'\n'));
    const QString over = DirectorySyncEdits::thresholdProblem(sync);
    m_status->setText(over.isEmpty() ? (sync.hasChanges() ? Msg::kDirPreviewIntro : Msg::kDirNothingToApply) : over);
    m_status->setStyleSheet(over.isEmpty() ? QString() : QStringLiteral("color: #c01c1c"));
    m_entries->show(m_preview.get(), &m_doc.chart());
    m_leavers->show(m_preview.get(), &m_doc.chart());
    m_force->setChecked(false);
    m_force->setEnabled(!over.isEmpty());
    m_apply->setEnabled(sync.hasChanges());
}

void DirectoryPreviewPage::clearPreview()
{
    m_entries->show(nullptr, nullptr);
    m_leavers->show(nullptr, nullptr);
    m_preview.reset();
    m_summary->clear();
    m_status->setStyleSheet(QString());
    m_force->setEnabled(false);
    m_apply->setEnabled(false);
}

void DirectoryPreviewPage::apply()
{
    if (!m_preview || m_worker)
        return;
    QString refusal;
    const std::optional<ImportResult> result
        = DirectorySyncEdits::apply(m_doc, *m_preview, m_force->isChecked(), &refusal);
    if (!result) {
        m_prompter.warn(this, refusal);
        return;
    }
    QList<int> mailTo;
    for (const int id : m_preview->newMemberIds()) {
        if (const MemberRecord* member = m_doc.chart().findMember(id); member && !member->Email.isEmpty())
            mailTo << id;
    }
    clearPreview();
    m_status->setText(Msg::kDirApplied.arg(result->added).arg(result->updated).arg(result->leavers));
    if (!mailTo.isEmpty() && m_prompter.askYesNo(this, Msg::kDirMailQuestion.arg(mailTo.size())))
        Q_EMIT mailRequested(mailTo);
}

} // namespace sable
