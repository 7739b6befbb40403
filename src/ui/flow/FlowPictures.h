// The carousel's covers as pictures. Each is decoded once to a small one, which is kept; large ones are decoded around
// the place that is looked at, those ahead first, and the ones furthest from there are given up for others. Whoever
// shows a place gets at once what there is. Decoding is done on threads of its own; all else is for the UI thread.
#pragma once

#include <QByteArray>
#include <QImage>
#include <QObject>
#include <QThreadPool>

#include <vector>

class FlowPictures : public QObject {
    Q_OBJECT

public:
    static constexpr int smallSide = 128; ///< pixels
    static constexpr int largestSide = 640;
    static constexpr qint64 largeBudget = 64'000'000; ///< bytes of all large ones

    explicit FlowPictures(QObject *parent = nullptr);
    ~FlowPictures() override;

    /// The encoded covers in their places, empty where there is none. What was decoded of the same bytes is kept.
    void setCovers(const std::vector<QByteArray> &covers);
    /// The place in the middle; where it moves to is found out from where it was.
    void lookAt(int place);
    /// How many pixels the large ones are to have at a side; it takes the next of a few steps.
    void setLargeSide(double pixels);

    /// The best that there is of a place: its card, or a stand-in's.
    [[nodiscard]] QImage card(int place) const;
    /// Whether no better one is to come.
    [[nodiscard]] bool isFinal(int place) const;
    /// Bytes of the large ones that are held.
    [[nodiscard]] qint64 largeBytes() const { return m_largeBytes; }

Q_SIGNALS:
    /// card() of the place is another.
    void arrived(int place);

private:
    struct Cover {
        QByteArray encoded;
        QImage small; ///< the picture alone
        QImage large; ///< the card
        bool isPicture = true; ///< until it is known better
        bool isAwaited = false; ///< it is being decoded
    };
    struct Order {
        int place = -1;
        bool large = false;
    };

    void pump();
    [[nodiscard]] Order next() const;
    [[nodiscard]] bool wants(int place, bool large) const;
    void decode(const Order &order);
    void land(const QByteArray &encoded, const Order &order, const QImage &picture);
    void giveUpFurthest();

    std::vector<Cover> m_covers;
    int m_middle = 0;
    int m_direction = 1;
    int m_side = 320; ///< pixels of a large one
    int m_running = 0;
    qint64 m_largeBytes = 0;
    QImage m_awaitedCard;
    QImage m_emptyCard;
    QThreadPool m_pool;
};
