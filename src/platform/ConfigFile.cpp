// SPDX-FileCopyrightText: 2026 The Marvola authors
// SPDX-License-Identifier: MIT

#include <marvola/ConfigFile.h>

#include "platform/ConfigChanges.h"
#include "platform/ConfigSyntax.h"
#include "platform/ConfigText.h"
#include "platform/NumberedGroup.h"
#include "platform/PlacedFile.h"
#include "platform/SafeFile.h"

#include <algorithm>
#include <optional>
#include <utility>

using namespace marvola;

namespace {

constexpr QLatin1String TrueWords[] = {QLatin1String("1"), QLatin1String("true"), QLatin1String("yes"),
                                       QLatin1String("on")};
constexpr QLatin1String FalseWords[] = {QLatin1String("0"), QLatin1String("false"), QLatin1String("no"),
                                        QLatin1String("off")};

template<std::size_t Size>
bool isOneOf(const QString &text, const QLatin1String (&words)[Size])
{
    for (const QLatin1String word : words) {
        if (text.compare(word, Qt::CaseInsensitive) == 0)
            return true;
    }
    return false;
}

} // namespace

class ConfigFile::Private
{
public:
    explicit Private(const PlacedFile &file) : m_file(file) {}

    std::optional<QString> value(const QString &group, const QString &key);
    QStringList numberedValues(const QString &group, int count);
    QMap<QString, QString> entries(const QString &group);
    bool canWrite(const QString &group, const QString &key);
    void set(const QString &group, const QString &key, std::optional<QByteArray> value);
    int setNumbered(const QString &group, int first, const QStringList &values);
    void clear(const QString &group);
    bool commit();
    bool lock();
    bool isUnreadable();
    bool isWorthCommitting() const { return !m_changes.isEmpty() && !m_hasFailed; }

private:
    const ConfigText &text();
    const QByteArray &spelling(const QString &group);

    SafeFile m_file;
    ConfigChanges m_changes;
    std::optional<TextFrame> m_frame;   ///< what was on disk when it was first asked for
    std::unique_ptr<ConfigText> m_text; ///< the same taken apart, when that was asked for
    std::optional<bool> m_isWritable;   ///< asked at the first write, and again when it may be otherwise
    bool m_hasFailed = false;           ///< the last commit did
    QString m_lastGroup;                ///< calls tend to stay in a group
    QByteArray m_lastSpelling;
};

const ConfigText &ConfigFile::Private::text()
{
    if (!m_frame)
        m_frame = m_file.read();
    if (!m_text)
        m_text = std::make_unique<ConfigText>(*m_frame);
    return *m_text;
}

bool ConfigFile::Private::isUnreadable()
{
    if (!m_frame)
        m_frame = m_file.read();
    return m_file.isUnread();
}

const QByteArray &ConfigFile::Private::spelling(const QString &group)
{
    if (m_lastSpelling.isEmpty() || m_lastGroup != group) {
        m_lastSpelling = escapeName(group);
        m_lastGroup = group;
    }
    return m_lastSpelling;
}

std::optional<QString> ConfigFile::Private::value(const QString &group, const QString &key)
{
    const QByteArray &rawGroup = spelling(group);
    const QByteArray rawKey = escapeName(key);
    if (const GroupChanges *changes = m_changes.find(rawGroup)) {
        if (const auto *change = changes->find(rawKey))
            return change->value ? std::optional(unescapeValue(*change->value)) : std::nullopt;
        if (changes->isCleared)
            return std::nullopt;
    }
    const auto found = text().value(rawGroup, rawKey);
    return found ? std::optional(unescapeValue(*found)) : std::nullopt;
}

QStringList ConfigFile::Private::numberedValues(const QString &group, int count)
{
    QStringList values;
    const QByteArray &rawGroup = spelling(group);
    if (m_changes.find(rawGroup)) {
        for (int number = 1; number <= count; ++number)
            values.append(value(group, QString::number(number)).value_or(QString()));
        return values;
    }
    const std::vector<QByteArrayView> found = text().numberedValues(rawGroup, count);
    values.reserve(static_cast<qsizetype>(found.size()));
    for (const QByteArrayView value : found)
        values.append(value.isNull() ? QString() : unescapeValue(value));
    return values;
}

QMap<QString, QString> ConfigFile::Private::entries(const QString &group)
{
    const QByteArray &rawGroup = spelling(group);
    const GroupChanges *changes = m_changes.find(rawGroup);
    QMap<QString, QString> all;
    const ConfigText::Entries *entries = changes && changes->isCleared ? nullptr : text().entries(rawGroup);
    if (entries) {
        for (KeyIndex::Number number = 0; number < entries->keys.size(); ++number)
            all.insert(unescapeName(entries->keys.key(number)), unescapeValue(entries->values[number]));
    }
    if (changes) {
        for (const auto &change : changes->changes()) {
            if (change.value)
                all.insert(unescapeName(change.key), unescapeValue(*change.value));
            else
                all.remove(unescapeName(change.key));
        }
    }
    return all;
}

bool ConfigFile::Private::canWrite(const QString &group, const QString &key)
{
    if (group.size() > MaxNameLength || key.size() > MaxNameLength)
        return false;
    if (!m_isWritable)
        m_isWritable = m_file.isWritable();
    return *m_isWritable;
}

void ConfigFile::Private::set(const QString &group, const QString &key, std::optional<QByteArray> value)
{
    m_changes.set(spelling(group), escapeName(key), std::move(value));
    m_hasFailed = false;
}

int ConfigFile::Private::setNumbered(const QString &group, int first, const QStringList &values)
{
    const auto refused =
        std::find_if(values.begin(), values.end(), [](const QString &value) { return value.size() > MaxValueLength; });
    const auto count = static_cast<int>(refused - values.begin());
    // A refused write changes nothing, not even the order in which groups were first written.
    if (count == 0)
        return 0;
    GroupChanges &changes = m_changes.ofGroup(spelling(group));
    changes.reserve(static_cast<std::size_t>(count));
    for (int written = 0; written < count; ++written)
        changes.set(QByteArray::number(qint64(first) + written), escapeValue(values.at(written)));
    m_hasFailed = false;
    return count;
}

void ConfigFile::Private::clear(const QString &group)
{
    m_changes.clearGroup(spelling(group));
    m_hasFailed = false;
}

bool ConfigFile::Private::commit()
{
    if (m_changes.isEmpty())
        return true;
    const auto merge = [this](const TextFrame &now, QByteArray &file) {
        // What was read may still be what is there; then it is in pieces already.
        if (m_text && m_frame->bytes().constData() == now.bytes().constData())
            return m_text->merge(m_changes, file);
        return ConfigText(now).merge(m_changes, file);
    };
    std::optional<TextFrame> committed = m_file.commit(merge, m_frame ? &*m_frame : nullptr);
    m_hasFailed = !committed;
    if (m_hasFailed)
        m_isWritable.reset();
    if (committed) {
        m_frame = std::move(committed);
        m_text.reset();
        m_changes.discard();
    }
    return !m_hasFailed;
}

bool ConfigFile::Private::lock()
{
    const bool isLocked = m_file.lock();
    m_frame.reset();
    m_text.reset();
    m_isWritable.reset();
    return isLocked;
}

ConfigFile::ConfigFile(const QString &path, bool) : ConfigFile(PlacedFile(path))
{
}

ConfigFile::ConfigFile(const PlacedFile &file) : d(std::make_unique<Private>(file))
{
}

ConfigFile::~ConfigFile()
{
    if (d->isWorthCommitting())
        static_cast<void>(d->commit());
}

QString ConfigFile::readEntry(const QString &group, const QString &key, const QString &defaultValue) const
{
    return d->value(group, key).value_or(defaultValue);
}

int ConfigFile::readNumEntry(const QString &group, const QString &key, int defaultValue) const
{
    bool isNumber = false;
    const int number = d->value(group, key).value_or(QString()).toInt(&isNumber);
    return isNumber ? number : defaultValue;
}

bool ConfigFile::readBoolEntry(const QString &group, const QString &key, bool defaultValue) const
{
    const QString text = d->value(group, key).value_or(QString()).trimmed();
    if (isOneOf(text, TrueWords))
        return true;
    return isOneOf(text, FalseWords) ? false : defaultValue;
}

bool ConfigFile::writeEntry(const QString &group, const QString &key, const QString &value)
{
    if (value.size() > MaxValueLength || !d->canWrite(group, key))
        return false;
    d->set(group, key, escapeValue(value));
    return true;
}

bool ConfigFile::writeEntry(const QString &group, const QString &key, int value)
{
    return writeEntry(group, key, QString::number(value));
}

bool ConfigFile::removeEntry(const QString &group, const QString &key)
{
    if (!d->canWrite(group, key))
        return false;
    d->set(group, key, std::nullopt);
    return true;
}

bool ConfigFile::clearGroup(const QString &group)
{
    if (!d->canWrite(group, QString()))
        return false;
    d->clear(group);
    return true;
}

QMap<QString, QString> ConfigFile::getGroupEntriesKeyList(const QString &group) const
{
    return d->entries(group);
}

QStringList ConfigFile::readNumberedEntries(const QString &group, int count) const
{
    return d->numberedValues(group, std::clamp(count, 0, NumberedGroup::MaxEntries));
}

int ConfigFile::writeNumberedEntries(const QString &group, int first, const QStringList &values)
{
    // No number is longer than a key may be.
    return d->canWrite(group, QString()) ? d->setNumbered(group, first, values) : 0;
}

bool ConfigFile::isUnreadable() const
{
    return d->isUnreadable();
}

bool ConfigFile::flush()
{
    return d->commit();
}

bool ConfigFile::lockForUpdate()
{
    return d->lock();
}
