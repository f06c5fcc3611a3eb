#include "runtime/Error.h"

#include <cstdio>
#include <new>

namespace zuvi {

Error::Error(QString description, int number)
    : m_description(std::move(description)), m_utf8(m_description.toUtf8()), m_number(number)
{
}

QString describeCurrentException()
{
    try {
        throw;
    } catch (const Error &e) {
        return e.description();
    } catch (const std::bad_alloc &) {
        return QStringLiteral("Memoria insuficiente");
    } catch (const std::exception &e) {
        return QString::fromLocal8Bit(e.what());
    } catch (...) {
        return QStringLiteral("Error desconocido");
    }
}

QString errorReportText(const QString &module, const QString &procedure, const QString &description)
{
    const QString crlf = QStringLiteral("\r\n");
    return QStringLiteral("Error occured:") + crlf + QStringLiteral("Module: ") + module + crlf +
           QStringLiteral("Function: ") + procedure + crlf + QStringLiteral("Description: ") +
           description;
}

namespace {

ReportSink &sink()
{
    static ReportSink s;
    return s;
}

void defaultSink(const QString &, const QString &text)
{
    QString plain = text;
    plain.replace(QStringLiteral("\r\n"), QStringLiteral("\n"));
    std::fprintf(stderr, "%s\n", qUtf8Printable(plain));
    std::fflush(stderr);
}

} // namespace

void setReportSink(ReportSink s)
{
    sink() = std::move(s);
}

ReportSink reportSink()
{
    if (sink())
        return sink();
    return defaultSink;
}

void showErrorReport(const QString &module, const QString &procedure, const QString &description)
{
    const QString title = QStringLiteral("ZuviProduccion");
    const QString text = errorReportText(module, procedure, description);
    try {
        if (sink())
            sink()(title, text);
        else
            defaultSink(title, text);
    } catch (...) {
        // A failing sink must not turn a reported error into a crash.
    }
}

} // namespace zuvi
