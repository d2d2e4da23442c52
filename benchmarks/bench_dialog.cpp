#include <QApplication>
#include <QTableWidget>

#include <benchmark/benchmark.h>

#include "dialogs/SoftwareUpdateAvailableDialog.h"

namespace {

QList<QStringList> packageRows(int count)
{
    QList<QStringList> rows;
    rows.reserve(count);
    for (int row = 0; row < count; ++row) {
        rows.append({QStringLiteral("Camera Firmware M%1 5.0.1").arg(row),
                     QStringLiteral("%1.5 MB").arg(row % 400), "zip", "de, en",
                     "Mac32, Mac64, MacPP"});
    }
    return rows;
}

QList<int> everySecondOf(int count)
{
    QList<int> rows;
    for (int row = 0; row < count; row += 2) {
        rows.append(row);
    }
    return rows;
}

void fill(vx::SoftwareUpdateAvailableDialog& dialog, const QList<QStringList>& rows)
{
    dialog.setTableEntries(rows);
    dialog.setTableHeaders({"Name", "File Size", "File Type", "Languages", "Platforms"});
}

// From nothing to a dialog that is painted.
void openDialog(benchmark::State& state)
{
    const QList<QStringList> rows = packageRows(int(state.range(0)));
    for (auto _ : state) {
        vx::SoftwareUpdateAvailableDialog dialog(nullptr, {});
        fill(dialog, rows);
        dialog.show();
        QCoreApplication::processEvents();
        dialog.repaint();
    }
}

// A second check while the dialog is open.
void refillDialog(benchmark::State& state)
{
    const QList<QStringList> rows = packageRows(int(state.range(0)));
    vx::SoftwareUpdateAvailableDialog dialog(nullptr, {});
    fill(dialog, rows);
    dialog.show();
    for (auto _ : state) {
        fill(dialog, rows);
        QCoreApplication::processEvents();
    }
}

// Every change of selection hides the foreign rows again.
void hideHalfOfTheRows(benchmark::State& state)
{
    const int count = int(state.range(0));
    const QList<int> hidden = everySecondOf(count);
    vx::SoftwareUpdateAvailableDialog dialog(nullptr, {});
    fill(dialog, packageRows(count));
    dialog.show();
    for (auto _ : state) {
        dialog.setHiddenEntries(hidden);
        dialog.setHiddenEntries({});
        QCoreApplication::processEvents();
    }
}

void hideTheSameRowsAgain(benchmark::State& state)
{
    const int count = int(state.range(0));
    const QList<int> hidden = everySecondOf(count);
    vx::SoftwareUpdateAvailableDialog dialog(nullptr, {});
    fill(dialog, packageRows(count));
    dialog.setHiddenEntries(hidden);
    dialog.show();
    for (auto _ : state) {
        dialog.setHiddenEntries(hidden);
        QCoreApplication::processEvents();
    }
}

void selectAllRows(benchmark::State& state)
{
    vx::SoftwareUpdateAvailableDialog dialog(nullptr, {});
    fill(dialog, packageRows(int(state.range(0))));
    dialog.show();
    auto* table = dialog.findChild<QTableWidget*>();
    for (auto _ : state) {
        table->selectAll();
        table->clearSelection();
    }
}

} // namespace

BENCHMARK(openDialog)->Arg(1)->Arg(100)->Arg(10000)->Unit(benchmark::kMillisecond);
BENCHMARK(refillDialog)->Arg(1)->Arg(100)->Arg(10000)->Unit(benchmark::kMillisecond);
BENCHMARK(hideHalfOfTheRows)->Arg(100)->Arg(10000)->Unit(benchmark::kMillisecond);
BENCHMARK(hideTheSameRowsAgain)->Arg(100)->Arg(10000)->Unit(benchmark::kMillisecond);
BENCHMARK(selectAllRows)->Arg(100)->Arg(10000)->Unit(benchmark::kMillisecond);

int main(int argc, char** argv)
{
    if (qEnvironmentVariableIsEmpty("QT_QPA_PLATFORM")) {
        qputenv("QT_QPA_PLATFORM", "offscreen");
    }
    const QApplication application(argc, argv);
    benchmark::Initialize(&argc, argv);
    if (benchmark::ReportUnrecognizedArguments(argc, argv)) {
        return 1;
    }
    benchmark::RunSpecifiedBenchmarks();
    return 0;
}
