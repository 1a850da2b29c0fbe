#include "filebox/CSableboxFolderFormView.h"

#include "Messages.h"
#include "document/CSableManagerDoc.h"
#include "filebox/ChartSourcePane.h"
#include "filebox/FolderPane.h"
#include "filebox/FolderPermissionModel.h"
#include "widgets/Heading.h"

#include <QHeaderView>
#include <QLabel>
#include <QMenu>
#include <QSplitter>
#include <QTableView>
#include <QVBoxLayout>

namespace sable {

CSableboxFolderFormView::CSableboxFolderFormView(CSableManagerDoc& doc, HomeSource home, QWidget* parent)
    : FileBoxPermissionView(doc, std::move(home), parent)
    , m_folders(new FolderPane(doc, FolderPane::MissingFolders::Shown, this))
    , m_model(new FolderPermissionModel(doc, this))
    , m_chart(new ChartSourcePane(doc, this))
    , m_folderLabel(new QLabel(this))
{
    auto* splitter = new QSplitter(Qt::Horizontal, this);
    splitter->setObjectName(QStringLiteral("Folders")); // its sizes are kept between runs
    auto* middle = new QWidget(splitter);
    QTableView* list = createPermissionList(m_model, FolderPermissionModel::ColLevel, middle);
    list->setColumnWidth(FolderPermissionModel::ColGrantee, 130);
    list->setColumnWidth(FolderPermissionModel::ColKind, 48);
    auto* bar = new QHBoxLayout;
    bar->addWidget(makeHeading(Msg::kFolderPermissionsHeading, middle));
    bar->addWidget(m_folderLabel, 1);
    auto* middleLayout = new QVBoxLayout(middle);
    middleLayout->setContentsMargins(0, 0, 0, 0);
    middleLayout->addLayout(bar);
    middleLayout->addWidget(list);
    splitter->addWidget(m_folders);
    splitter->addWidget(middle);
    splitter->addWidget(m_chart);
    splitter->setStretchFactor(0, 2);
    splitter->setStretchFactor(1, 3);
    splitter->setStretchFactor(2, 2);
    splitter->setSizes({170, 280, 200});
    setContent(Msg::kNavFolderPermissions, splitter);

    connect(m_folders, &FolderPane::currentFolderChanged, this, &CSableboxFolderFormView::onFolderChanged);
    connect(m_model, &FolderPermissionModel::granteesDropped, this, [this](const std::vector<Grantee>& grantees) {
        if (!grantees.empty())
            permissionList()->selectRow(m_model->rowOf(grantees.front()));
    });
    connect(m_chart, &ChartSourcePane::menuRequested, this, [this](const QPoint& globalPos) {
        QMenu menu(this);
        menu.addAction(Msg::kAddPermissionTo.arg(m_folders->currentFolder()), this, [this] { addSelectedGrantees(); })
            ->setEnabled(!m_folders->currentFolder().isEmpty());
        menu.exec(globalPos);
    });
    onFolderChanged({});
}

void CSableboxFolderFormView::refreshHome()
{
    m_folders->setHome(currentHome());
}

void CSableboxFolderFormView::onFolderChanged(const QString& folderPath)
{
    m_model->setFolder(folderPath);
    m_folderLabel->setText(folderPath);
    permissionList()->setEnabled(!folderPath.isEmpty());
    Q_EMIT selectionChanged();
}

int CSableboxFolderFormView::deleteSelectedPermissions()
{
    const int removed = FileBoxEdits(m_doc).removePermissions(m_model->keysOfRows(selectedRows()));
    Q_EMIT selectionChanged();
    return removed;
}

int CSableboxFolderFormView::addSelectedGrantees()
{
    const std::vector<Grantee> grantees = m_chart->selectedGrantees();
    const int added = FileBoxEdits(m_doc).grant({m_folders->currentFolder()}, grantees, Read);
    if (!grantees.empty())
        permissionList()->selectRow(m_model->rowOf(grantees.front()));
    return added;
}

} // namespace sable
