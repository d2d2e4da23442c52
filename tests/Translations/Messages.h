#pragma once

#include <QString>

#include <vector>

namespace vx::test {

/** A message of the catalogues as it must stand, in UTF-8. */
struct Message
{
    const char* context;
    const char* source;
    const char* german;
    const char* french;

    /** The text in "de" or "fr"; the source for any other language. */
    QString in(const QString& language) const;
};

/** All 48 messages, context by context. */
const std::vector<Message>& messages();

/** The text of one message in a language; null if there is no such message. */
QString translated(const char* context, const char* source, const QString& language);

} // namespace vx::test
