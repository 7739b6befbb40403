// One picture of a theme, from a file or from the network, for QML.
//
// Whole, in the middle, and in hard pixels however large it is shown: it is of a screen of a few hundred pixels.
// Reading and decoding run in the background, with limits; what has been overtaken by another address, or by the end of
// the item, lands nowhere. A disk can hang: an item reads one file at a time, and all items together a few, so that
// other jobs go on. UI thread.
#pragma once

#include <QColor>
#include <QImage>
#include <QQuickPaintedItem>
#include <QUrl>
#include <QtQml/qqmlregistration.h>

#include <QCoro/QCoroTask>

#include <atomic>
#include <cstdint>
#include <filesystem>
#include <memory>

class ThemePicture : public QQuickPaintedItem {
    Q_OBJECT
    QML_ELEMENT
    Q_PROPERTY(QUrl url READ url WRITE setUrl NOTIFY urlChanged)
    Q_PROPERTY(QColor ground READ ground WRITE setGround NOTIFY groundChanged)
    Q_PROPERTY(double rounding READ rounding WRITE setRounding NOTIFY roundingChanged)
    Q_PROPERTY(State state READ state NOTIFY stateChanged)

public:
    enum State {
        Absent, ///< there is no address
        Reading, ///< a file
        Fetching, ///< from the network
        Ready,
        Unavailable, ///< no picture is there, or none that can be shown
    };
    Q_ENUM(State)

    static constexpr std::int64_t maxBytes = 9'999'999;

    explicit ThemePicture(QQuickItem *parent = nullptr);
    ~ThemePicture() override;

    /// A file is read anew when its address gets another fragment.
    [[nodiscard]] QUrl url() const { return m_url; }
    void setUrl(const QUrl &url);
    /// Below the picture, where that leaves room.
    [[nodiscard]] QColor ground() const { return m_ground; }
    void setGround(const QColor &colour);
    /// Of the corners that ground and picture are clipped to.
    [[nodiscard]] double rounding() const { return m_rounding; }
    void setRounding(double radius);
    [[nodiscard]] State state() const { return m_state; }

    void paint(QPainter *painter) override;

Q_SIGNALS:
    void urlChanged();
    void groundChanged();
    void roundingChanged();
    void stateChanged();

private:
    /// Of one address: its end cancels all that is under way for it.
    struct Loading;
    /// Reads the file of the present address as soon as its turn comes.
    void readInTurn();
    static void readNext();
    QCoro::Task<> read();
    QCoro::Task<> fetch(QUrl address);
    void show(const QImage &image);
    void setState(State state);

    QUrl m_url;
    QColor m_ground = Qt::transparent;
    double m_rounding = 0;
    State m_state = Absent;
    QImage m_image;
    std::shared_ptr<Loading> m_loading;
    bool m_isReading = false; ///< a file, perhaps of an earlier address
};
