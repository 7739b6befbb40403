// Keeps the keyboard's focus where it can be seen and used, in every window and for every control.
//
// What gets the focus is scrolled into view, unless a click brought it. What loses it by being disabled, hidden or
// deleted hands it on to the next control, unless something else has taken it. What was only disabled has it back once
// it can, if nobody has acted meanwhile: most is disabled for as long as its own work takes. Where the focus comes back
// by itself (after a sheet, a menu, another window) the ring is shown if it was a key that brought it. UI thread.
#pragma once

#include "platform/tasks/BurstTimer.h"

#include <QList>
#include <QObject>
#include <QPointer>
#include <QQuickItem>
#include <QQuickWindow>
#include <QtQml/qqmlregistration.h>

class FocusGuide : public QObject {
    Q_OBJECT
    QML_ELEMENT
    QML_SINGLETON
    /// The letters that open the menus are underlined: the key for them is held down.
    Q_PROPERTY(bool lettersShown READ lettersShown NOTIFY lettersShownChanged)

public:
    explicit FocusGuide(QObject *parent = nullptr);

    [[nodiscard]] bool lettersShown() const { return m_lettersShown; }

    bool eventFilter(QObject *watched, QEvent *event) override;

Q_SIGNALS:
    void lettersShownChanged();
    /// The key for the menus was pressed alone, and nothing modal is open.
    void menusWanted();

private:
    void onFocusChanged();
    void remember(QQuickItem &item);
    void settle();
    void onFrame();
    [[nodiscard]] bool isLost(const QQuickWindow &window) const;
    void handOn();
    void giveBack(const QQuickWindow &window);
    void onUserActed();
    void showLetters(bool shown);

    BurstTimer m_settling {[this] { settle(); }}; ///< runs in the turn after a change of the focus
    QPointer<QQuickWindow> m_window;
    QPointer<QQuickItem> m_last; ///< the last control that had the focus
    QList<QPointer<QQuickItem>> m_around; ///< what m_last lies in, from the inside out
    QPointer<QQuickItem> m_popup; ///< the menu or sheet that m_last lies in
    QPointer<QQuickItem> m_before; ///< what had the focus before that opened
    QPointer<QQuickItem> m_disabled; ///< what is given the focus back once it is enabled
    QPointer<QQuickItem> m_heir; ///< what has it until then
    QMetaObject::Connection m_enabling; ///< of m_disabled
    QMetaObject::Connection m_frames; ///< of the window whose frames are followed
    int m_framesToFollow = 0;
    bool m_ringed = false; ///< it showed its ring
    bool m_byKey = false; ///< the latest input was a key
    bool m_altAlone = false;
    bool m_lettersShown = false;
};
