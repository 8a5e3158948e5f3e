#pragma once

#include <QString>
#include <cstddef>
#include <vector>

namespace tavrin {

struct CardButton {
    QString objectName;
    QString label; ///< with its access key
    /// What the key of the button does, with "%1" for the key; empty: it is not told.
    QString hint = {};
};

/// What a card says and offers. The first button, which stops or cancels, stands by itself at the beginning
/// of the row; the others at its end, in their order.
struct CardContent {
    QString objectName;
    QString head;
    QString text = {}; ///< plain; may be empty
    std::vector<CardButton> buttons = {};
    std::size_t defaultButton = 0; ///< has the focus, and is meant by Return
    std::size_t escapeButton = 0;  ///< is meant by Escape, and by a card that is withdrawn
    QString spoken = {};           ///< the description for assistive technology; empty: the text
    bool isFailure = false;        ///< what is pointed at is framed as failed
};

} // namespace tavrin
