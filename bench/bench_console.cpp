// Opening the chart editor on a large chart and scrolling it, beside a reference measured in the
// same run: the same views over a model of the same size that returns fixed texts, which is the
// cost of the views themselves. Runs without a screen.
// usage: bench_console [--scale F]

#include "BenchSupport.h"
#include "ChartGenerator.h"
#include "document/CSableManagerDoc.h"
#include "orgchart/COrganizeFormView.h"
#include "orgchart/MemberTableView.h"
#include "orgchart/OrgTreeView.h"

#include <QAbstractTableModel>
#include <QApplication>
#include <QScrollBar>
#include <QTableView>
#include <QTreeView>

using namespace sable;
using namespace sable::bench;

namespace {

class FixedModel final : public QAbstractTableModel
{
public:
    explicit FixedModel(int rows)
        : m_rows(rows)
    { }
    int rowCount(const QModelIndex& parent) const override { return parent.isValid() ? 0 : m_rows; }
    int columnCount(const QModelIndex& parent) const override { return parent.isValid() ? 0 : MemberColumnCount; }
    QVariant data(const QModelIndex& index, int role) const override
    {
        return role == Qt::DisplayRole ? QVariant(QStringLiteral("가나다 %1").arg(index.row())) : QVariant();
    }

private:
    int m_rows;
};

// Pages through the view from top to bottom, drawing each page; returns the slowest page in ms.
double pageThrough(QAbstractItemView* view, int pages, double* average)
{
    QScrollBar* bar = view->verticalScrollBar();
    double worst = 0;
    double total = 0;
    for (int page = 0; page < pages; ++page) {
        const double seconds = timeIt([&] {
            bar->setValue(bar->minimum() + (bar->maximum() - bar->minimum()) * page / std::max(1, pages - 1));
            view->viewport()->repaint();
        });
        worst = std::max(worst, seconds);
        total += seconds;
    }
    *average = total / pages * 1000;
    return worst * 1000;
}

} // namespace

int main(int argc, char** argv)
{
    qputenv("QT_QPA_PLATFORM", "offscreen");
    QApplication app(argc, argv);
    QTextStream out(stdout);
    const QStringList args = app.arguments();
    const ChartSize size = scaledChartSize(args);

    CSableManagerDoc doc;
    ChartContents contents = generateChart(size);
    const double adopt = timeIt([&] { doc.adopt(std::move(contents)); });
    std::unique_ptr<COrganizeFormView> editor;
    const double open = timeIt([&] {
        editor = std::make_unique<COrganizeFormView>(doc);
        editor->resize(1000, 700);
        editor->show();
        editor->memberList()->viewport()->repaint();
        editor->tree()->viewport()->repaint();
        QApplication::processEvents();
    });
    editor->tree()->expandToDepth(2);
    double ourAverage = 0;
    double treeAverage = 0;
    const double ourWorst = pageThrough(editor->memberList(), 200, &ourAverage);
    const double treeWorst = pageThrough(editor->tree(), 200, &treeAverage);

    FixedModel fixed(doc.chart().memberCount() + 1);
    QTableView reference;
    reference.resize(1000, 700);
    const double referenceOpen = timeIt([&] {
        reference.setModel(&fixed);
        reference.show();
        reference.viewport()->repaint();
        QApplication::processEvents();
    });
    double referenceAverage = 0;
    const double referenceWorst = pageThrough(&reference, 200, &referenceAverage);

    out << "chart: " << doc.chart().memberCount() << " members, " << doc.chart().groupCount() << " departments\n"
        << QStringLiteral("taking over the loaded chart        %1 ms\n").arg(adopt * 1000, 8, 'f', 1)
        << QStringLiteral("opening the chart editor            %1 ms   reference %2 ms (bound 500 ms)\n")
               .arg(open * 1000, 8, 'f', 1)
               .arg(referenceOpen * 1000, 0, 'f', 1)
        << QStringLiteral(
               "member list, a page: slowest %1 ms, average %2 ms   reference slowest %3 ms, average %4 ms\n")
               .arg(ourWorst, 0, 'f', 1)
               .arg(ourAverage, 0, 'f', 1)
               .arg(referenceWorst, 0, 'f', 1)
               .arg(referenceAverage, 0, 'f', 1)
        << QStringLiteral("department tree, a page: slowest %1 ms, average %2 ms\n")
               .arg(treeWorst, 0, 'f', 1)
               .arg(treeAverage, 0, 'f', 1);
    return open < 0.5 ? 0 : 1;
}
