#include "presentation/WindowMemory.h"

#include "platform/propertylists/UserDefaults.h"
#include "presentation/MainWindow.h"
#include "presentation/WindowPlace.h"

#include <QHeaderView>
#include <QScreen>
#include <QTableView>
#include <functional>
#include <optional>

namespace tavrin {

namespace {

constexpr const char* geometryKey = "windowGeometry";
constexpr const char* headerKey = "previewColumns";
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

namespace {

void placeFirst(MainWindow& window) {
    const QRect available = window.screen()->availableGeometry();
    window.setGeometry(WindowPlace::first(available));
    if (WindowPlace::fills(available))
        window.setWindowState(window.windowState() | Qt::WindowMaximized);
}

} // namespace

void WindowMemory::remember(const MainWindow& window, UserDefaults& defaults) {
    defaults.setObject(geometryKey, dataOf(window.saveGeometry()));
    if (const auto* table = window.findChild<QTableView*>("previewTableView"))
        defaults.setObject(headerKey, dataOf(table->horizontalHeader()->saveState()));
    (void)defaults.synchronize();
}

void WindowMemory::restoreOnce(MainWindow& window, const UserDefaults& defaults) {
    if (window.property(restoredProperty).toBool())
        return;
    window.setProperty(restoredProperty, true);
    if (window.restoreGeometry(bytesUnder(defaults, geometryKey)))
        window.returnToScreen(); // from one that is gone, or from beyond its edge
    else
        placeFirst(window);
    if (auto* table = window.findChild<QTableView*>("previewTableView"))
        table->horizontalHeader()->restoreState(bytesUnder(defaults, headerKey));
    window.restorePaneWidth();
}

} // namespace tavrin
