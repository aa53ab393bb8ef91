#include "app/screens/bridge/RowModels.h"

namespace quorvane {

CheckRowModel::CheckRowModel(const ContentView& content, QObject* parent)
    : QAbstractListModel(parent), m_content(content) {
    for (const AnyObservable* result : std::initializer_list<const AnyObservable*>{
             &content.hasLidSensor(), &content.hasAccessibility(), &content.hasTrackpad()}) {
        m_subscriptions.push_back(result->observe([this] {
            emit dataChanged(index(0), index(rowCount() - 1), {PassedRole, ResultRole});
        }));
    }
}

int CheckRowModel::rowCount(const QModelIndex& parent) const {
    return parent.isValid() ? 0 : static_cast<int>(m_content.checkRows().size());
}

QVariant CheckRowModel::data(const QModelIndex& index, int role) const {
    if (!checkIndex(index, CheckIndexOption::IndexIsValid))
        return {};
    const CheckRow row = m_content.checkRows().at(static_cast<std::size_t>(index.row()));
    switch (role) {
    case FeatureRole:
        return QString::fromUtf8(row.feature);
    case PassedRole:
        return row.passed;
    case ResultRole:
        return QString::fromUtf8(row.passed ? row.ok : row.fail);
    default:
        return {};
    }
}

QHash<int, QByteArray> CheckRowModel::roleNames() const {
    return {{FeatureRole, "feature"}, {PassedRole, "passed"}, {ResultRole, "result"}};
}

ToggleRowModel::ToggleRowModel(const ContentView& content, QObject* parent)
    : QAbstractListModel(parent), m_content(content) {
    for (int row = 0; row < rowCount(); ++row) {
        const ToggleRow& toggle = content.toggleRows()[static_cast<std::size_t>(row)];
        follow(*toggle.isOn, row, IsOnRole);
        if (toggle.hint)
            follow(*toggle.hint, row, HintRole);
    }
}

void ToggleRowModel::follow(const AnyObservable& observable, int row, Role role) {
    m_subscriptions.push_back(observable.observe(
        [this, row, role] { emit dataChanged(index(row), index(row), {role}); }));
}

int ToggleRowModel::rowCount(const QModelIndex& parent) const {
    return parent.isValid() ? 0 : static_cast<int>(m_content.toggleRows().size());
}

QVariant ToggleRowModel::data(const QModelIndex& index, int role) const {
    if (!checkIndex(index, CheckIndexOption::IndexIsValid))
        return {};
    const ToggleRow& row = m_content.toggleRows()[static_cast<std::size_t>(index.row())];
    switch (role) {
    case IconRole:
        return QString::fromUtf8(row.text.icon);
    case LabelRole:
        return QString::fromUtf8(row.text.label);
    case IsOnRole:
        return row.isOn->get();
    case HintRole:
        return row.hint ? QString::fromUtf8(row.hint->get()) : QString();
    default:
        return {};
    }
}

QHash<int, QByteArray> ToggleRowModel::roleNames() const {
    return {{IconRole, "icon"}, {LabelRole, "label"}, {IsOnRole, "isOn"}, {HintRole, "hint"}};
}

} // namespace quorvane
