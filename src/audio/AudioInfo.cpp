#include "audio/AudioInfo.h"

#include <cmath>
#include <limits>

namespace {

const QString unknownParameters = QStringLiteral("Parametry nieznane");

QString rateText(std::int64_t sampleRate)
{
    if (sampleRate < 1) {
        return unknownParameters;
    }
    // C's "%g" with a point in every locale.
    return QString::number(double(sampleRate) / 1000.0, 'g', 6) + QStringLiteral(" kHz");
}

QString twoDigits(std::int64_t number)
{
    return QStringLiteral("%1").arg(number, 2, 10, QLatin1Char('0'));
}

} // namespace

QString AudioInfo::parameters() const
{
    if (bitDepth >= 1) {
        return QString::number(bitDepth) + QStringLiteral("-bit / ") + rateText(sampleRate);
    }
    if (bitrate >= 1) {
        return QStringLiteral("≈ ") + QString::number(bitrate) + QStringLiteral(" kb/s · ") + rateText(sampleRate);
    }
    return rateText(sampleRate);
}

QString durationLabel(double seconds)
{
    constexpr double largest = double(std::numeric_limits<std::int64_t>::max());
    if (!std::isfinite(seconds) || seconds < 0 || seconds >= largest) {
        return QStringLiteral("—");
    }
    const auto whole = std::int64_t(seconds);
    if (whole < 3600) {
        return QString::number(whole / 60) + u':' + twoDigits(whole % 60);
    }
    return QString::number(whole / 3600) + u':' + twoDigits(whole / 60 % 60) + u':' + twoDigits(whole % 60);
}

QJsonObject toJson(const AudioInfo &info)
{
    QJsonObject tags;
    for (auto tag = info.tags.begin(); tag != info.tags.end(); ++tag) {
        tags.insert(tag.key(), tag.value());
    }
    const auto integer = [](std::int64_t value) { return qint64(value); };
    QJsonObject object {{QStringLiteral("codec"), info.codec}, {QStringLiteral("sampleRate"), integer(info.sampleRate)},
        {QStringLiteral("bitDepth"), integer(info.bitDepth)}, {QStringLiteral("duration"), info.duration},
        {QStringLiteral("bitrate"), integer(info.bitrate)}, {QStringLiteral("trackNumber"), integer(info.trackNumber)},
        {QStringLiteral("discNumber"), integer(info.discNumber)}, {QStringLiteral("year"), info.year},
        {QStringLiteral("tags"), tags}};
    if (info.picture) {
        object.insert(QStringLiteral("picture"), QString::fromLatin1(info.picture->toBase64()));
    }
    return object;
}

std::optional<AudioInfo> audioInfoFromJson(const QJsonObject &object)
{
    bool complete = true;
    const auto value = [&](const char *key, QJsonValue::Type type) {
        const QJsonValue found = object.value(QLatin1String(key));
        complete = complete && found.type() == type;
        return found;
    };
    const auto number = [&](const char *key) { return value(key, QJsonValue::Double).toInteger(); };
    AudioInfo info;
    info.codec = value("codec", QJsonValue::String).toString();
    info.sampleRate = number("sampleRate");
    info.bitDepth = number("bitDepth");
    info.duration = value("duration", QJsonValue::Double).toDouble();
    info.bitrate = number("bitrate");
    info.trackNumber = number("trackNumber");
    info.discNumber = number("discNumber");
    info.year = value("year", QJsonValue::String).toString();
    const QJsonObject tags = value("tags", QJsonValue::Object).toObject();
    for (auto tag = tags.begin(); tag != tags.end(); ++tag) {
        complete = complete && tag->isString();
        info.tags.insert(tag.key(), tag->toString());
    }
    if (object.contains(QStringLiteral("picture"))) {
        info.picture = QByteArray::fromBase64(value("picture", QJsonValue::String).toString().toLatin1());
    }
    return complete ? std::optional(info) : std::nullopt;
}
