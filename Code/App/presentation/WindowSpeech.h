#pragma once

#include "presentation/WindowServices.h"

#include <QElapsedTimer>
#include <QObject>
#include <QString>
#include <QTimer>
#include <cstddef>
#include <functional>
#include <string>

namespace tavrin {

/// What is said of previews and runs, once each and at rest: nothing talks over typing.
class WindowSpeech final : public QObject {
    Q_OBJECT

  public:
    /// `problemCount` is that of the list on show.
    WindowSpeech(const WindowServices& services, std::function<std::size_t()> problemCount);

    /// A preview is due, or has ended. Only one that follows a change of the steps is told.
    void previewChanged(bool isDue);
    void runChanged(bool isRunning, std::size_t items);

    /// "43 percent, about 15 seconds left"; without a time where none can be told yet.
    [[nodiscard]] static QString progressText(int done, int total, qint64 milliseconds);

  private:
    void tellPreview();
    void tellRun();

    const WindowServices services;
    const std::function<std::size_t()> problems;
    std::u16string toldRecipe; ///< of the preview that was last told, or the first
    bool hasPreview = false;
    bool isFailureTold = false;
    QTimer rest;
    QTimer tick;
    QElapsedTimer runTime;
    qint64 lastTold = 0; ///< milliseconds of `runTime`
};

} // namespace tavrin
