#pragma once

#include "server/ProductLinks.h"

#include <QMap>
#include <QTimer>
#include <QWidget>

class QGridLayout;
class QLabel;

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

protected:
    void showEvent(QShowEvent* event) override;

private:
    void showServices();
    void showFigures();

    CSableManagerDoc& m_doc;
    ServerServiceControl& m_services;
    QMap<QString, QLabel*> m_serviceLabels;
    QMap<QString, QLabel*> m_figureLabels;
    QTimer m_figuresLater;
    bool m_bChartLoaded = false;
};

} // namespace sable
