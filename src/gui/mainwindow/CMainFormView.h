#pragma once

#include "server/ProductLinks.h"

#include <QMap>
#include <QTimer>
#include <QWidget>

#include <functional>

class QGridLayout;
class QLabel;
class QPushButton;

namespace sable {

class CSableManagerDoc;
class ServerServiceControl;

// The start page: the server's seven services and their state, the database in use, the chart's
// figures, and the product's pages.
class CMainFormView final : public QWidget
{
    Q_OBJECT

public:
    CMainFormView(CSableManagerDoc& doc, ServerServiceControl& services, QString databaseDescription,
        ProductLinks links, QWidget* parent = nullptr);

    // The state text shown for a service.
    QString serviceText(const QString& name) const;
    QString figureText(const QString& figure) const;
    void setChartLoaded(bool loaded);
    // What the page says first when no service can be reached (it depends on the settings).
    void setServiceProblemSummary(std::function<QString()> summary);
    // The notice shown when no service can be reached; empty while they can.
    QString serviceProblemText() const;

Q_SIGNALS:
    void serviceManagerRequested();
    void guideRequested();
    void linkRequested(const QUrl& url);

protected:
    void showEvent(QShowEvent* event) override;

private:
    void showServices();
    void showFigures();
    QWidget* createServiceProblem(QWidget* parent);
    QWidget* createLinks(const ProductLinks& links);

    CSableManagerDoc& m_doc;
    ServerServiceControl& m_services;
    QMap<QString, QLabel*> m_serviceLabels;
    QMap<QString, QLabel*> m_figureLabels;
    QWidget* m_serviceProblem = nullptr;
    QLabel* m_serviceProblemText = nullptr;
    std::function<QString()> m_serviceProblemSummary;
    QTimer m_figuresLater;
    bool m_bChartLoaded = false;
};

} // namespace sable
