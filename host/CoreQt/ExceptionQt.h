#pragma once

#include <QByteArray>
#include <QString>

#include <exception>
#include <memory>

#include "host/CoreQt/CoreQtExport.h"

namespace vx {

/** The base of the exceptions that carry a text for the user. */
class VX_COREQT_EXPORT ExceptionQt : public std::exception
{
public:
    /**
     * @param message what went wrong, for the user to read.
     * @param cause the exception that led to this one, or null. It is copied as an ExceptionQt:
     *     its text and its own cause are kept, its type is not.
     */
    explicit ExceptionQt(const QString& message, const ExceptionQt* cause = nullptr);

    ExceptionQt(const ExceptionQt&) = default;
    ExceptionQt& operator=(const ExceptionQt&) = default;
    ~ExceptionQt() override;

    /** The text that was given, without that of the cause. */
    QString message() const;

    /** The exception that led to this one, or null; it lives as long as this one and its copies. */
    const ExceptionQt* cause() const;

    /** The text in UTF-8, for code that knows nothing of Qt. */
    const char* what() const noexcept override;

private:
    QByteArray m_message;
    std::shared_ptr<const ExceptionQt> m_cause;
};

} // namespace vx
