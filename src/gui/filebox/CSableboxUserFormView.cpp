#include "filebox/CSableboxUserFormView.h"

#include "Messages.h"
#include "document/CSableManagerDoc.h"
#include "filebox/ChartSourcePane.h"
#include "filebox/FolderPane.h"
#include "filebox/GranteePermissionModel.h"
#include "widgets/Heading.h"

#include <QLabel>
#include <QMenu>
#include <QSplitter>
#include <QTableView>
#include <QTreeView>
#include <QVBoxLayout>

namespace sable {
namespace {

QString granteeName(const CSableManagerDoc& doc, const std::optional<Grantee>& grantee)
{
    if (!grantee)
        return {};
    if (grantee->isDepartment()) {
        const OrgNode* group = doc.chart().findGroup(grantee->id);
        return group ? group->name() : QString();
    }
    const MemberRecord* member = doc.chart().findMember(grantee->id);
    return member ? Msg::kGranteeUserName.arg(member->MemberName, member->MemberID) : QString();
}

} // namespace

CSableboxUserFormView::CSableboxUserFormView(CSableManagerDoc& doc, HomeSource home, QWidget* parent)
    : FileBoxPermissionView(doc, std::move(home), parent)
    , m_chart(new ChartSourcePane(doc, this))
    , m_model(new GranteePermissionModel(doc, this))
    , m_folders(new FolderPane(doc, FolderPane::MissingFolders::Hidden, this))
    , m_granteeLabel(new QLabel(this))
{
    auto* splitter = new QSplitter(Qt::Horizontal, this);
    splitter->setObjectName(QStringLiteral("Grantees")); // its sizes are kept between runs
    auto* middle = new QWidget(splitter);
    QTableView* list = createPermissionList(m_model, GranteePermissionModel::ColLevel, middle);
    list->setColumnWidth(GranteePermissionModel::ColFolder, 120);
    list->setColumnWidth(GranteePermissionModel::ColLevel, 64);
    auto* bar = new QHBoxLayout;
    bar->addWidget(makeHeading(Msg::kGranteePermissionsHeading, middle));
    bar->addWidget(m_granteeLabel, 1);
    auto* middleLayout = new QVBoxLayout(middle);
    middleLayout->setContentsMargins(0, 0, 0, 0);
    middleLayout->addLayout(bar);
    middleLayout->addWidget(list);
    splitter->addWidget(m_chart);
    splitter->addWidget(middle);
    splitter->addWidget(m_folders);
    splitter->setStretchFactor(0, 2);
    splitter->setStretchFactor(1, 3);
    splitter->setStretchFactor(2, 2);
    splitter->setSizes({200, 280, 170});
    setContent(Msg::kNavUserPermissions, splitter);

    connect(m_chart, &ChartSourcePane::currentGranteeChanged, this, &CSableboxUserFormView::onGranteeChanged);
    connect(m_model, &QAbstractItemModel::modelReset, this, [this] {
        m_granteeLabel->setText(granteeName(m_doc, m_model->grantee()));
        permissionList()->setEnabled(m_model->grantee().has_value());
    });
    connect(m_folders->tree(), &QWidget::customContextMenuRequested, this, [this](const QPoint& pos) {
        const QModelIndex index = m_folders->tree()->indexAt(pos);
        if (!index.isValid())
            return;
        if (!m_folders->tree()->selectionModel()->isSelected(index))
            m_folders->tree()->setCurrentIndex(index);
        QMenu menu(this);
        menu.addAction(Msg::kAddPermissionTo.arg(m_granteeLabel->text()), this, [this] { addSelectedFolders(); })
            ->setEnabled(m_model->grantee().has_value());
        menu.exec(m_folders->tree()->viewport()->mapToGlobal(pos));
    });
    onGranteeChanged();
}

void CSableboxUserFormView::refreshHome()
{
    const QString home = currentHome();
    m_folders->setHome(home);
    m_model->setHome(home);
}

void CSableboxUserFormView::onGranteeChanged()
{
    m_model->setGrantee(m_chart->currentGrantee());
    Q_EMIT selectionChanged();
}

int CSableboxUserFormView::deleteSelectedPermissions()
{
    const int removed = FileBoxEdits(m_doc).removePermissions(m_model->keysOfRows(selectedRows()));
    Q_EMIT selectionChanged();
    return removed;
}

int CSableboxUserFormView::addSelectedFolders()
{
    if (!m_model->grantee())
        return 0;
    return FileBoxEdits(m_doc).grant(m_folders->selectedFolders(), {*m_model->grantee()}, Read);
}

} // namespace sable
