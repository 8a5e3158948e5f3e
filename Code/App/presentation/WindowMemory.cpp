#include "presentation/WindowMemory.h"

#include "platform/propertylists/UserDefaults.h"
#include "presentation/MainWindow.h"

#include <QHeaderView>
#include <QSplitter>
#include <QTableView>
#include <functional>
#include <optional>

namespace tavrin {

namespace {

constexpr const char* geometryKey = "windowGeometry";
constexpr const char* headerKey = "previewHeader";
constexpr const char* settingsWidthKey = "settingsPaneWidth";
constexpr const char* restoredProperty = "isRestored";

} // namespace

PropertyData WindowMemory::dataOf(const QByteArray& bytes) { return {{bytes.begin(), bytes.end()}}; }

QByteArray WindowMemory::bytesUnder(const UserDefaults& defaults, const char* key) {
    const auto stored = defaults.objectForKey(key);
    const PropertyData* content = stored ? stored->asData() : nullptr;
    if (!content)
        return {};
    return {reinterpret_cast<const char*>(content->bytes.data()),
            static_cast<qsizetype>(content->bytes.size())};
}

void WindowMemory::remember(const MainWindow& window, UserDefaults& defaults) {
    defaults.setObject(geometryKey, dataOf(window.saveGeometry()));
    if (const auto* table = window.findChild<QTableView*>("previewTableView"))
        defaults.setObject(headerKey, dataOf(table->horizontalHeader()->saveState()));
    const auto* splitter = window.findChild<QSplitter*>("innerSplitter");
    if (splitter && splitter->orientation() == Qt::Horizontal && window.isVisible())
        defaults.setObject(settingsWidthKey, splitter->sizes().front());
    (void)defaults.synchronize();
}

void WindowMemory::restoreOnce(MainWindow& window, const UserDefaults& defaults) {
    if (window.property(restoredProperty).toBool())
        return;
    window.setProperty(restoredProperty, true);
    window.restoreGeometry(bytesUnder(defaults, geometryKey));
    if (auto* table = window.findChild<QTableView*>("previewTableView"))
        table->horizontalHeader()->restoreState(bytesUnder(defaults, headerKey));
    auto* splitter = window.findChild<QSplitter*>("innerSplitter");
    const int width = defaults.integerForKey(settingsWidthKey);
    if (splitter && width > 0)
        splitter->setSizes({width, std::max(1, window.width() - width)});
}

} // namespace tavrin
