#include "ui/guide/IPodModels.h"

#include "model/IPodProfile.h"

QVariantList IPodModels::all() const
{
    QVariantList result;
    for (const IPodProfile &profile : IPodProfile::all()) {
        result.append(QVariantMap {{QStringLiteral("profileId"), profile.id}, {QStringLiteral("name"), profile.name},
            {QStringLiteral("support"), profile.support}, {QStringLiteral("supported"), profile.target.has_value()}});
    }
    return result;
}
