#include "document/RestorePointDialog.h"

#include "Messages.h"

#include <QApplication>
#include <QDialogButtonBox>
#include <QDir>
#include <QFileInfo>
#include <QHeaderView>
#include <QLabel>
#include <QPushButton>
#include <QThread>
#include <QTreeWidget>
#include <QVBoxLayout>

#include <memory>

namespace sable {
namespace {

constexpr int kPathRole = Qt::UserRole;

enum Column
{
    ColWhen,
    ColWho,
    ColProgram,
    ColChanges,
};

} // namespace

RestorePointDialog::RestorePointDialog(RestorePoints points, Prompter prompter, QWidget* parent)
    : QDialog(parent)
    , m_points(std::move(points))
    , m_prompter(std::move(prompter))
{
    setWindowTitle(Msg::kRestoreTitle);
    auto* intro = new QLabel(Msg::kRestoreIntro.arg(QDir::toNativeSeparators(m_points.folder())), this);
    intro->setWordWrap(true);
    m_list = new QTreeWidget(this);
    m_list->setObjectName(QStringLiteral("RestorePoints"));
    m_list->setRootIsDecorated(false);
    m_list->setUniformRowHeights(true);
    m_list->setHeaderLabels(
        {Msg::kRestoreWhenColumn, Msg::kRestoreWhoColumn, Msg::kRestoreProgramColumn, Msg::kRestoreChangesColumn});
    m_list->header()->setStretchLastSection(true);
    m_state = new QLabel(this);

    auto* buttons = new QDialogButtonBox(this);
    m_open = buttons->addButton(Msg::kRestoreOpen, QDialogButtonBox::AcceptRole);
    m_open->setEnabled(false);
    m_open->setDefault(true);
    buttons->addButton(QDialogButtonBox::Close);
    connect(m_open, &QPushButton::clicked, this, &RestorePointDialog::openChosen);
    connect(buttons, &QDialogButtonBox::rejected, this, &QDialog::reject);
    connect(m_list, &QTreeWidget::itemActivated, this, &RestorePointDialog::openChosen);
    connect(m_list, &QTreeWidget::currentItemChanged, this,
        [this](QTreeWidgetItem* item) { m_open->setEnabled(item && !m_worker); });

    auto* layout = new QVBoxLayout(this);
    layout->addWidget(intro);
    layout->addWidget(m_list, 1);
    layout->addWidget(m_state);
    layout->addWidget(buttons);
    resize(760, 420);
    readList();
}

RestorePointDialog::~RestorePointDialog()
{
    // The worker reads files only; it ends soon, and must not outlive what it writes into.
    if (m_worker) {
        m_worker->wait();
        QApplication::restoreOverrideCursor();
    }
}

void RestorePointDialog::setBusy(const QString& text)
{
    m_state->setText(text);
    m_open->setEnabled(false);
    QApplication::setOverrideCursor(Qt::BusyCursor);
}

void RestorePointDialog::finishWork()
{
    QApplication::restoreOverrideCursor();
    m_worker->deleteLater();
    m_worker = nullptr;
    m_open->setEnabled(m_list->currentItem() != nullptr);
}

void RestorePointDialog::readList()
{
    setBusy(Msg::kRestoreReading);
    auto found = std::make_shared<std::vector<RestorePointInfo>>();
    m_worker = QThread::create([points = m_points, found] { *found = points.list(); });
    m_worker->setParent(this);
    connect(m_worker, &QThread::finished, this, [this, found] {
        showList(*found);
        finishWork();
        Q_EMIT listRead();
    });
    m_worker->start();
}

void RestorePointDialog::showList(const std::vector<RestorePointInfo>& points)
{
    for (const RestorePointInfo& point : points) {
        const QString who = QStringLiteral("%1@%2").arg(point.author.user, point.author.host);
        auto* item = new QTreeWidgetItem(m_list,
            {point.savedAt.toLocalTime().toString(Msg::kSaveTimeFormat), who, point.author.program,
                point.changes.join(QStringLiteral("; "))});
        item->setData(ColWhen, kPathRole, point.path);
        item->setToolTip(ColWhen, QDir::toNativeSeparators(point.path));
        item->setToolTip(ColChanges, point.changes.join(u'\n'));
    }
    for (const int column : {ColWhen, ColWho, ColProgram})
        m_list->resizeColumnToContents(column);
    m_state->setText(points.empty() ? Msg::kRestoreNone : Msg::kRestoreCount.arg(points.size()));
    if (!points.empty())
        m_list->setCurrentItem(m_list->topLevelItem(0));
    m_list->setFocus();
}

void RestorePointDialog::openChosen()
{
    const QTreeWidgetItem* item = m_list->currentItem();
    if (!item || m_worker)
        return;
    const QString path = item->data(ColWhen, kPathRole).toString();
    if (!m_prompter.askYesNo(this, Msg::kRestoreQuestion.arg(item->text(ColWhen))))
        return;
    setBusy(Msg::kRestoreOpening.arg(QFileInfo(path).fileName()));
    auto problem = std::make_shared<QString>();
    auto newer = std::make_shared<QString>();
    auto point = std::make_shared<std::optional<RestorePoint>>();
    m_worker = QThread::create(
        [path, problem, newer, point] { *point = RestorePoints::readForRestore(path, problem.get(), newer.get()); });
    m_worker->setParent(this);
    connect(m_worker, &QThread::finished, this, [this, problem, newer, point] {
        finishWork();
        if (!*point) {
            m_state->clear();
            m_prompter.warn(this,
                newer->isEmpty() ? Msg::kRestoreUnreadable.arg(*problem)
                                 : Msg::kRestoreNewerUnreadable.arg(
                                     *problem, QDir::toNativeSeparators(QFileInfo(*newer).absolutePath())));
            Q_EMIT openFailed(*problem);
            return;
        }
        m_chosen = std::move(*point);
        accept();
    });
    m_worker->start();
}

} // namespace sable
