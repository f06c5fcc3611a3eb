#pragma once

#include "runtime/Export.h"

#include <QString>

#include <exception>
#include <functional>

namespace zuvi {

// The error every host call and every database failure raises. It carries the
// description the error report shows after "Description: ".
class ZUVI_RUNTIME_EXPORT Error : public std::exception
{
public:
    explicit Error(QString description, int number = 0);

    const QString &description() const { return m_description; }
    int number() const { return m_number; }
    const char *what() const noexcept override { return m_utf8.constData(); }

private:
    QString m_description;
    QByteArray m_utf8;
    int m_number = 0;
};

// Description of whatever is in flight inside a catch (...) block.
ZUVI_RUNTIME_EXPORT QString describeCurrentException();

// The text of the module's error report: four lines separated by CR LF.
ZUVI_RUNTIME_EXPORT QString errorReportText(const QString &module, const QString &procedure,
                                            const QString &description);

// Where error reports go. Until a host installs its own (the reference host
// routes them through its interaction seam: a plain box titled
// "ZuviProduccion" in the shell), they are written to standard error.
using ReportSink = std::function<void(const QString &title, const QString &text)>;
ZUVI_RUNTIME_EXPORT void setReportSink(ReportSink sink);
// The way out in force (the standard-error writer when none was installed),
// for a host that wraps it for a while.
ZUVI_RUNTIME_EXPORT ReportSink reportSink();
ZUVI_RUNTIME_EXPORT void showErrorReport(const QString &module, const QString &procedure,
                                         const QString &description);

// Error traps. Every procedure is a boundary: nothing escapes into the caller's
// event loop. reportErrors() shows the report with the procedure's module and
// name, swallowErrors() ends silently. Both return false when an error ended f.
template <typename F> bool reportErrors(const QString &module, const QString &procedure, F &&f)
{
    try {
        std::forward<F>(f)();
        return true;
    } catch (...) {
        showErrorReport(module, procedure, describeCurrentException());
        return false;
    }
}

template <typename F> bool swallowErrors(F &&f)
{
    try {
        std::forward<F>(f)();
        return true;
    } catch (...) {
        return false;
    }
}

} // namespace zuvi
