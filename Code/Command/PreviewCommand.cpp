#include "PreviewCommand.h"

#include "RowPrinter.h"
#include "Session.h"
#include "store/contexts/StoreContext.h"

#include <mutex>

namespace tavrin {

ExitStatus runPreviewCommand(const PreviewOptions& options) {
    Session session(options.run);
    session.preview();
    if (!session.wasInterrupted()) {
        StoreContext& context = session.context();
        const std::lock_guard lock(context.mutex());
        RowPrinter(options, session.terminal().output(), session.terminal().outputIsTerminal())
            .print(context, session.filter());
    }
    return session.finish();
}

} // namespace tavrin
