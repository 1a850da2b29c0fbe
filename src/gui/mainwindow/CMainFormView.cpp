#include "mainwindow/CMainFormView.h"

#include "Messages.h"
#include "document/CSableManagerDoc.h"
#include "orgchart/COrganizeTemplateView.h"
#include "server/ServerServiceControl.h"
#include "server/ServerServices.h"
#include "widgets/Icons.h"

#include <QGridLayout>
#include <QGroupBox>
#include <QLabel>
#include <QLocale>
#include <QPushButton>
#include <QVBoxLayout>

namespace sable {
namespace {

QString stateText(const ServiceReply& reply)
{
    if (reply.outcome == ServiceOutcome::DoesNotExist)
        return Msg::kServiceMissing;
    if (!reply.isDone())
        return Msg::kServiceUnknown;
    switch (reply.status.state) {
    case ServiceState::Running:
        return Msg::kServiceRunning;
    case ServiceState::StartPending:
        return Msg::kServiceStartPending;
    case ServiceState::StopPending:
        return Msg::kServiceStopPending;
    case ServiceState::Stopped:
        break;
    }
    return Msg::kServiceStopped;
}

QColor stateColour(const ServiceReply& reply)
{
    if (!reply.isDone())
        return QColor(0x9a, 0xa5, 0xb1);
    switch (reply.status.state) {
    case ServiceState::Running:
        return QColor(0x2a, 0x9d, 0x8f);
    case ServiceState::StartPending:
    case ServiceState::StopPending:
        return QColor(0xe9, 0xc4, 0x6a);
    case ServiceState::Stopped:
        break;
    }
    return QColor(0xe7, 0x6f, 0x51);
}

QGroupBox* section(const QString& title, QWidget* parent)
{
    auto* box = new QGroupBox(title, parent);
    box->setStyleSheet(QStringLiteral("QGroupBox { font-weight: bold; color: #24496e; }"
                                      " QGroupBox QLabel { font-weight: normal; color: palette(text); }"));
    return box;
}

} // namespace

CMainFormView::CMainFormView(CSableManagerDoc& doc, ServerServiceControl& services, QString databaseDescription,
    ProductLinks links, QWidget* parent)
    : QWidget(parent)
    , m_doc(doc)
    , m_services(services)
{
    auto* layout = new QVBoxLayout(this);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->addWidget(makePageTitle(Msg::kProductName, this));
    auto* body = new QGridLayout;
    body->setContentsMargins(10, 6, 10, 6);
    layout->addLayout(body, 1);

    auto* servicesBox = section(Msg::kStartServices, this);
    auto* servicesGrid = new QGridLayout(servicesBox);
    int row = 0;
    for (const QString& name : ServerServices::kInstallOrder) {
        auto* state = new QLabel(servicesBox);
        state->setObjectName(name);
        servicesGrid->addWidget(new QLabel(name, servicesBox), row, 0);
        servicesGrid->addWidget(state, row++, 1);
        m_serviceLabels.insert(name, state);
    }
    servicesGrid->addWidget(createServiceProblem(servicesBox), row, 0, 1, 2);
    body->addWidget(servicesBox, 0, 0, 2, 1);

    auto* databaseBox = section(Msg::kStartDatabase, this);
    auto* databaseText = new QLabel(databaseDescription, databaseBox);
    databaseText->setWordWrap(true);
    databaseText->setTextInteractionFlags(Qt::TextSelectableByMouse);
    (new QVBoxLayout(databaseBox))->addWidget(databaseText);
    body->addWidget(databaseBox, 0, 1);

    auto* chartBox = section(Msg::kStartChart, this);
    auto* chartGrid = new QGridLayout(chartBox);
    row = 0;
    for (const QString& figure :
        {Msg::kStartDepartments, Msg::kStartUsers, Msg::kStartUsersWithoutDepartment, Msg::kStartRanks}) {
        auto* value = new QLabel(chartBox);
        value->setAlignment(Qt::AlignRight | Qt::AlignVCenter);
        chartGrid->addWidget(new QLabel(figure, chartBox), row, 0);
        chartGrid->addWidget(value, row++, 1);
        m_figureLabels.insert(figure, value);
    }
    body->addWidget(chartBox, 1, 1);

    body->addWidget(createLinks(links), 2, 0, 1, 2);
    body->setRowStretch(3, 1);
    body->setColumnStretch(0, 1);
    body->setColumnStretch(1, 1);

    // Counting the members without a department walks the whole list: once after a burst of edits.
    m_figuresLater.setSingleShot(true);
    m_figuresLater.setInterval(200);
    connect(&m_figuresLater, &QTimer::timeout, this, &CMainFormView::showFigures);
    connect(&services, &ServerServiceControl::statesChanged, this, &CMainFormView::showServices);
    connect(&doc, &CSableManagerDoc::contentsReplaced, &m_figuresLater, qOverload<>(&QTimer::start));
    connect(&doc, &CSableManagerDoc::rankListChanged, &m_figuresLater, qOverload<>(&QTimer::start));
    connect(&doc.history(), &EditHistory::changed, &m_figuresLater, qOverload<>(&QTimer::start));
    showServices();
    showFigures();
}

QWidget* CMainFormView::createServiceProblem(QWidget* parent)
{
    // Why the states read "확인할 수 없음", and the way to change that.
    m_serviceProblem = new QWidget(parent);
    m_serviceProblem->setObjectName(QStringLiteral("serviceProblem"));
    m_serviceProblemText = new QLabel(m_serviceProblem);
    m_serviceProblemText->setWordWrap(true);
    m_serviceProblemText->setTextInteractionFlags(Qt::TextSelectableByMouse);
    auto* button = new QPushButton(Msg::kStartServiceManagerLink, m_serviceProblem);
    connect(button, &QPushButton::clicked, this, &CMainFormView::serviceManagerRequested);
    auto* layout = new QVBoxLayout(m_serviceProblem);
    layout->setContentsMargins(0, 8, 0, 0);
    layout->addWidget(m_serviceProblemText);
    layout->addWidget(button, 0, Qt::AlignLeft);
    m_serviceProblem->hide();
    return m_serviceProblem;
}

QWidget* CMainFormView::createLinks(const ProductLinks& links)
{
    auto* linksBox = section(Msg::kStartLinks, this);
    auto* linksLayout = new QHBoxLayout(linksBox);
    const auto addLink = [this, linksBox, linksLayout](const QString& text, const QString& href) {
        auto* link = new QLabel(QStringLiteral("<a href=\"%1\">%2</a>").arg(href.toHtmlEscaped(), text), linksBox);
        link->setTextFormat(Qt::RichText);
        link->setOpenExternalLinks(false);
        // Reachable with Tab and opened with Enter, as well as with the pointer.
        link->setTextInteractionFlags(Qt::LinksAccessibleByMouse | Qt::LinksAccessibleByKeyboard);
        connect(link, &QLabel::linkActivated, this, [this](const QString& target) {
            if (target.isEmpty() || target == QLatin1String("#guide"))
                Q_EMIT guideRequested();
            else
                Q_EMIT linkRequested(QUrl(target));
        });
        linksLayout->addWidget(link);
    };
    addLink(Msg::kStartGuideLink, QStringLiteral("#guide"));
    addLink(Msg::kStartHelpLink, links.help.toString());
    addLink(Msg::kStartHomeLink, links.home.toString());
    linksLayout->addStretch(1);
    return linksBox;
}

void CMainFormView::setServiceProblemSummary(std::function<QString()> summary)
{
    m_serviceProblemSummary = std::move(summary);
    showServices();
}

QString CMainFormView::serviceProblemText() const
{
    return m_serviceProblem->isVisibleTo(this) ? m_serviceProblemText->text() : QString();
}

QString CMainFormView::serviceText(const QString& name) const
{
    const QLabel* label = m_serviceLabels.value(name);
    return label ? label->property("state").toString() : QString();
}

QString CMainFormView::figureText(const QString& figure) const
{
    const QLabel* label = m_figureLabels.value(figure);
    return label ? label->text() : QString();
}

void CMainFormView::setChartLoaded(bool loaded)
{
    m_bChartLoaded = loaded;
    showFigures();
}

void CMainFormView::showEvent(QShowEvent* event)
{
    QWidget::showEvent(event);
    m_services.refreshStates();
    showFigures();
}

void CMainFormView::showServices()
{
    const auto& states = m_services.states();
    for (auto it = m_serviceLabels.cbegin(); it != m_serviceLabels.cend(); ++it) {
        const ServiceReply reply = states.value(it.key(), ServiceReply {ServiceOutcome::Unavailable, {}, {}});
        const QString text = stateText(reply);
        it.value()->setProperty("state", text);
        it.value()->setText(
            QStringLiteral("<span style=\"color:%1\">●</span> %2").arg(stateColour(reply).name(), text));
    }
    const QString reason = m_services.unavailableReason();
    if (!reason.isEmpty() && m_serviceProblemSummary)
        m_serviceProblemText->setText(m_serviceProblemSummary() + QStringLiteral("\n(") + reason + u')');
    m_serviceProblem->setVisible(!reason.isEmpty() && m_serviceProblemSummary);
}

void CMainFormView::showFigures()
{
    const OrgChart& chart = m_doc.chart();
    int withoutDepartment = 0;
    for (const MemberRecord& member : chart.members())
        withoutDepartment += chart.hasPlacement(member.K_MemberID) ? 0 : 1;
    const auto show = [this](const QString& figure, int value) {
        m_figureLabels.value(figure)->setText(m_bChartLoaded ? QLocale().toString(value) : QStringLiteral("…"));
    };
    show(Msg::kStartDepartments, chart.groupCount());
    show(Msg::kStartUsers, chart.memberCount());
    show(Msg::kStartUsersWithoutDepartment, withoutDepartment);
    show(Msg::kStartRanks, m_doc.ranks().count());
}

} // namespace sable
