#pragma once

#include <QAbstractListModel>
#include <QtQmlIntegration/qqmlintegration.h>

#include <vector>

#include "app/ContentView.h"

namespace quorvane {

/// The results of the hardware check, a row each.
class CheckRowModel final : public QAbstractListModel {
    Q_OBJECT
    QML_ANONYMOUS

public:
    explicit CheckRowModel(const ContentView& content, QObject* parent = nullptr);

    [[nodiscard]] int rowCount(const QModelIndex& parent = {}) const override;
    [[nodiscard]] QVariant data(const QModelIndex& index, int role) const override;
    [[nodiscard]] QHash<int, QByteArray> roleNames() const override;

private:
    enum Role { FeatureRole = Qt::UserRole, PassedRole, ResultRole };

    const ContentView& m_content;
    std::vector<Subscription> m_subscriptions;
};

/// The switches of the control panel, a row each.
class ToggleRowModel final : public QAbstractListModel {
    Q_OBJECT
    QML_ANONYMOUS

public:
    explicit ToggleRowModel(const ContentView& content, QObject* parent = nullptr);

    [[nodiscard]] int rowCount(const QModelIndex& parent = {}) const override;
    [[nodiscard]] QVariant data(const QModelIndex& index, int role) const override;
    [[nodiscard]] QHash<int, QByteArray> roleNames() const override;

private:
    enum Role { IconRole = Qt::UserRole, LabelRole, IsOnRole, HintRole };

    void follow(const AnyObservable& observable, int row, Role role);

    const ContentView& m_content;
    std::vector<Subscription> m_subscriptions;
};

} // namespace quorvane
