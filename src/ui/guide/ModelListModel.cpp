#include "ui/guide/ModelListModel.h"

#include "model/IPodProfile.h"

int ModelListModel::rowCount(const QModelIndex &parent) const
{
    return parent.isValid() ? 0 : int(IPodProfile::all().size());
}

QVariant ModelListModel::data(const QModelIndex &index, int role) const
{
    if (!checkIndex(index, CheckIndexOption::IndexIsValid | CheckIndexOption::ParentIsInvalid)) {
        return {};
    }
    const IPodProfile &profile = IPodProfile::all()[std::size_t(index.row())];
    switch (role) {
    case ProfileIdRole:
        return profile.id;
    case NameRole:
        return profile.name;
    case SupportRole:
        return profile.support;
    case SupportedRole:
        return profile.target.has_value();
    default:
        return {};
    }
}

QHash<int, QByteArray> ModelListModel::roleNames() const
{
    return {{ProfileIdRole, "profileId"}, {NameRole, "name"}, {SupportRole, "support"}, {SupportedRole, "supported"}};
}
