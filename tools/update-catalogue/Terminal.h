#pragma once

#include <QJsonDocument>
#include <QString>

#include <cstdio>

namespace vx {

/** The program's standard output: plain text in UTF-8, with colours only where a person reads. */
class Terminal
{
public:
    enum Colour { Plain, Bold, Dim, Red, Yellow, Green, Cyan };

    /** Writes to @p output. Colours are on if it is a terminal and NO_COLOR is not set. */
    explicit Terminal(std::FILE* output);

    /** Writes one line. @throws CommandFailure if that is not possible, as on a full disk. */
    void line(const QString& text = QString());

    /** Writes an indented JSON document, in the same way; commands print nothing else with
     * "--json". */
    void json(const QJsonDocument& document);

    /** @p text in @p colour, or as it is where colours are off. */
    QString coloured(const QString& text, Colour colour) const;

private:
    void write(const QByteArray& bytes);

    std::FILE* m_output;
    bool m_colours;
};

} // namespace vx
