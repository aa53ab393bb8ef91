#pragma once

#include <QCoreApplication>

#include "base/NonCopyable.h"

namespace quorvane {

/// The Qt application of one test, without arguments.
template <typename Application>
class ApplicationOf : NonCopyable {
public:
    ApplicationOf() = default;

    /// Deletes what waits to be deleted, which would leak else.
    ~ApplicationOf() { QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete); }

private:
    int m_argumentCount = 1;
    char m_name[5] = "test";                  // NOLINT(modernize-avoid-c-arrays): what Qt asks for.
    char* m_arguments[2] = {m_name, nullptr}; // NOLINT(modernize-avoid-c-arrays): the same.
    Application m_application{m_argumentCount, m_arguments};
};

using QtApplication = ApplicationOf<QCoreApplication>;

} // namespace quorvane
