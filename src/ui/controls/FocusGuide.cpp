#include "ui/controls/FocusGuide.h"

#include <QGuiApplication>
#include <QKeyEvent>

#include <algorithm>
#include <utility>

namespace {

constexpr double breathingSpace = 8; ///< around what is scrolled into view, so that its ring is seen too

bool ringShown(const QQuickItem &item)
{
    return item.property("visualFocus").toBool();
}

/// Whether the keyboard has something to act on in it. What is no stop of the Tab key is a frame around others.
bool usable(const QQuickItem &item)
{
    return item.isVisible() && item.isEnabled() && (item.activeFocusOnTab() || !item.isFocusScope());
}

/// The menu or sheet that it lies in or is, if any.
QQuickItem *popupOf(QQuickItem *item)
{
    while (item && !item->inherits("QQuickPopupItem")) {
        item = item->parentItem();
    }
    return item;
}

/// Whether something has to be answered first. A popup is known by its class and its properties only: its header is
/// private.
bool isModalOpen()
{
    const QWindow *window = QGuiApplication::focusWindow();
    const QObjectList objects = window ? window->findChildren<QObject *>() : QObjectList();
    return std::any_of(objects.cbegin(), objects.cend(), [](const QObject *object) {
        return object->inherits("QQuickPopup") && object->property("visible").toBool()
            && object->property("modal").toBool();
    });
}

/// Neither the mouse nor a key has put the focus there: something that had taken it has given it back.
bool cameByItself(int reason)
{
    return reason == Qt::PopupFocusReason || reason == Qt::ActiveWindowFocusReason || reason == Qt::OtherFocusReason;
}

/// A click has put the focus there, or has disabled what had it: what was clicked is seen, and where the focus was
/// handed on to, nobody looks. To be asked only where the latest input was none of a key.
bool cameByMouse(int reason)
{
    return reason == Qt::MouseFocusReason || reason == Qt::OtherFocusReason;
}

/// Moves `view` as little as needed for all of `item` to be seen, or its beginning where it is too large. What fills
/// all of the view stays where it is. A view can name in its property "covered" how much of its upper edge something
/// lies over.
void scrollTo(QQuickItem &view, const QQuickItem &item)
{
    const auto *content = view.property("contentItem").value<QQuickItem *>();
    if (!content || view.height() <= 0) {
        return;
    }
    view.ensurePolished(); // rows that have just come get their places
    const double origin = view.property("originY").toDouble();
    const double least = origin - view.property("topMargin").toDouble();
    const double most
        = origin + view.property("contentHeight").toDouble() + view.property("bottomMargin").toDouble() - view.height();
    const QPointF top = item.mapToItem(content, QPointF(0, -breathingSpace));
    const double bottom = item.mapToItem(content, QPointF(0, item.height() + breathingSpace)).y();
    const double now = view.property("contentY").toDouble();
    if (top.y() <= now && bottom >= now + view.height()) {
        return;
    }
    const double wanted
        = std::min(std::max(now, bottom - view.height()), top.y() - view.property("covered").toDouble());
    const double possible = std::max(least, std::min(wanted, most));
    if (wanted != now && possible != now) {
        view.setProperty("contentY", possible);
    }
}

/// A page's head can move with a list without lying in it: it then names the list in its property "scrolledBy".
void scrollIntoView(QQuickItem &item)
{
    for (QQuickItem *around = item.parentItem(); around; around = around->parentItem()) {
        if (around->inherits("QQuickFlickable")) {
            scrollTo(*around, item);
        } else if (auto *view = around->property("scrolledBy").value<QQuickItem *>()) {
            scrollTo(*view, item);
        }
    }
}

} // namespace

FocusGuide::FocusGuide(QObject *parent)
    : QObject(parent)
{
    connect(qGuiApp, &QGuiApplication::focusObjectChanged, this, &FocusGuide::onFocusChanged);
    qGuiApp->installEventFilter(this);
}

bool FocusGuide::eventFilter(QObject *watched, QEvent *event)
{
    switch (event->type()) {
    case QEvent::ShortcutOverride: // a key that is a shortcut is not reported in any other way
    case QEvent::KeyPress: {
        const bool alt = static_cast<QKeyEvent *>(event)->key() == Qt::Key_Alt && !isModalOpen();
        onUserActed();
        m_byKey = true;
        m_altAlone = alt;
        showLetters(alt || (m_lettersShown && static_cast<QKeyEvent *>(event)->modifiers().testFlag(Qt::AltModifier)));
        break;
    }
    case QEvent::KeyRelease:
        if (static_cast<QKeyEvent *>(event)->key() == Qt::Key_Alt) {
            showLetters(false);
            if (std::exchange(m_altAlone, false) && !isModalOpen()) {
                Q_EMIT menusWanted();
            }
        }
        break;
    case QEvent::MouseButtonPress:
        onUserActed();
        m_byKey = false;
        [[fallthrough]];
    case QEvent::Wheel:
        m_altAlone = false;
        break;
    case QEvent::FocusOut:
        if (watched->isWindowType()) { // the key is let go elsewhere
            m_altAlone = false;
            showLetters(false);
        }
        break;
    default:
        break;
    }
    return false;
}

void FocusGuide::showLetters(bool shown)
{
    if (m_lettersShown != shown) {
        m_lettersShown = shown;
        Q_EMIT lettersShownChanged();
    }
}

void FocusGuide::onFocusChanged()
{
    const auto *window = qobject_cast<QQuickWindow *>(QGuiApplication::focusWindow());
    QQuickItem *item = window ? window->activeFocusItem() : nullptr;
    if (item && usable(*item)) {
        remember(*item);
    }
    m_settling.start();
}

void FocusGuide::remember(QQuickItem &item)
{
    if (m_last) {
        disconnect(m_last, &QQuickItem::visibleChanged, this, nullptr);
    }
    connect(&item, &QQuickItem::visibleChanged, this, &FocusGuide::onFocusChanged); // what is hidden keeps the focus
    QQuickItem *popup = popupOf(&item);
    if (!m_popup && popup) {
        m_before = m_last;
    }
    m_popup = popup;
    m_last = &item;
    m_window = item.window();
    m_around.clear();
    for (QQuickItem *around = item.parentItem(); around; around = around->parentItem()) {
        m_around.append(around);
    }
    m_ringed = ringShown(item);
}

void FocusGuide::settle()
{
    auto *window = qobject_cast<QQuickWindow *>(QGuiApplication::focusWindow());
    if (!window) {
        return; // another program has the keyboard
    }
    if (isLost(*window)) {
        handOn();
    }
    giveBack(*window);
    QQuickItem *item = window->activeFocusItem();
    if (!item || !usable(*item)) {
        return;
    }
    const QVariant reason = item->property("focusReason");
    if (m_byKey && reason.isValid() && cameByItself(reason.toInt())) {
        item->setProperty("focusReason", Qt::TabFocusReason);
    }
    remember(*item);
    disconnect(m_frames);
    if (!m_byKey && reason.isValid() && cameByMouse(reason.toInt())) {
        return;
    }
    scrollIntoView(*item);
    m_framesToFollow = 5;
    m_frames = connect(window, &QQuickWindow::afterAnimating, this, &FocusGuide::onFrame);
}

/// A list guesses where a row is until it has made those before it, and they have found their heights.
void FocusGuide::onFrame()
{
    if (m_last && m_framesToFollow-- > 0) {
        scrollIntoView(*m_last);
    } else {
        disconnect(m_frames);
    }
}

/// Whether the keyboard has nothing to act on. A menu or sheet that has just opened looks for itself.
bool FocusGuide::isLost(const QQuickWindow &window) const
{
    QQuickItem *now = window.activeFocusItem();
    if (!now || m_window != &window || usable(*now)) {
        return false;
    }
    const QQuickItem *popup = popupOf(now);
    return !popup || (popup == m_popup && !(m_last && usable(*m_last)));
}

/// Back to what had it before a menu or sheet, or to the last one. Where that was disabled or hidden: to the next
/// control. Where it was deleted or its page hidden: to the first control of what is left around it.
void FocusGuide::handOn()
{
    const auto reason = m_ringed || m_byKey ? Qt::TabFocusReason : Qt::OtherFocusReason;
    if (m_popup && !m_popup->isVisible() && m_before) {
        remember(*m_before);
    }
    if (m_last && usable(*m_last)) {
        m_last->forceActiveFocus(reason);
        return;
    }
    const auto shown = [](const QPointer<QQuickItem> &item) { return item && item->isVisible(); };
    QQuickItem *from = m_last && !m_around.isEmpty() && shown(m_around.front()) ? m_last.data() : nullptr;
    if (!from) {
        const auto around = std::find_if(m_around.cbegin(), m_around.cend(), shown);
        from = around == m_around.cend() ? nullptr : around->data();
    }
    QQuickItem *next = from ? from->nextItemInFocusChain(true) : nullptr;
    if (!next || !usable(*next)) {
        return;
    }
    if (!m_disabled && shown(m_last) && !m_last->isEnabled()) {
        m_disabled = m_last;
        disconnect(m_enabling);
        m_enabling = connect(m_last, &QQuickItem::enabledChanged, this, [this] {
            if (m_disabled) {
                m_settling.start();
            }
        });
    }
    next->forceActiveFocus(reason);
    m_heir = m_window ? m_window->activeFocusItem() : nullptr;
}

/// To what had to hand the focus on because it was disabled. Something else that has taken it keeps it, but a menu or
/// sheet only until it is closed.
void FocusGuide::giveBack(const QQuickWindow &window)
{
    QQuickItem *now = window.activeFocusItem();
    if (!m_disabled || !now || !usable(*now) || popupOf(now)) {
        return;
    }
    if (now != m_heir) {
        m_disabled.clear();
    } else if (usable(*m_disabled)) {
        std::exchange(m_disabled, nullptr)
            ->forceActiveFocus(m_ringed || m_byKey ? Qt::TabFocusReason : Qt::OtherFocusReason);
    }
}

/// Whoever has gone on from where the focus is stays there. What is done in a menu or sheet is about that alone.
void FocusGuide::onUserActed()
{
    const auto *window = qobject_cast<QQuickWindow *>(QGuiApplication::focusWindow());
    if (!window || !popupOf(window->activeFocusItem())) {
        m_disabled.clear();
    }
}
