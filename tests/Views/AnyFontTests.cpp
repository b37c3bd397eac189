#include <QtGui/QFontDatabase>
#include <QtGui/QGuiApplication>
#include <tuple>

#include "tests/Views/WindowStates.h"

namespace orvane::test {
namespace {

/// Something that is drawn, and where.
struct Drawn {
    const QQuickItem* item;
    QRectF frame;
    std::string name;
};

std::string describe(const QRectF& frame) {
    return std::to_string(qRound(frame.x())) + "," + std::to_string(qRound(frame.y())) + " " +
           std::to_string(qRound(frame.width())) + "x" + std::to_string(qRound(frame.height()));
}

QRectF inkOf(const QQuickItem& text) {
    const QSizeF size(text.property("contentWidth").toReal(), text.property("contentHeight").toReal());
    qreal x = 0;
    const int alignment = text.property("horizontalAlignment").toInt();
    if (alignment == Qt::AlignHCenter) x = (text.width() - size.width()) / 2;
    if (alignment == Qt::AlignRight) x = text.width() - size.width();
    const qreal y = text.property("verticalAlignment").toInt() == Qt::AlignVCenter
                        ? (text.height() - size.height()) / 2
                        : 0;
    return {QPointF(x, y), size};
}

/// A list may stand in a pane that clips for it.
bool clips(const QQuickItem& item) {
    return item.clip() || item.inherits("QQuickFlickable");
}

/// The part of it that is not clipped away.
QRectF seenPart(const QQuickItem& item, QRectF frame, const QQuickItem& root) {
    for (const QQuickItem* above = item.parentItem(); above && above != &root; above = above->parentItem())
        if (clips(*above)) frame &= frameIn(root, *above);
    return frame;
}

bool isText(const QQuickItem& item) {
    return item.inherits("QQuickText");
}

class AnyFontTest : public WindowStatesTest,
                    public testing::WithParamInterface<std::tuple<const char*, double>> {
  protected:
    AnyFontTest() {
        QFont font = before_;
        font.setFamilies({std::get<0>(GetParam())});
        QGuiApplication::setFont(font);
        desktop.portalSays({{}, {}, {}, std::get<1>(GetParam())});
    }
    ~AnyFontTest() override { QGuiApplication::setFont(before_); }

    static std::vector<Drawn> drawnIn(QQuickItem& root) {
        std::vector<Drawn> drawn;
        collect(root, root, drawn);
        return drawn;
    }

    /// No text, symbol or picture lies over another one.
    static void expectNoOverlap(const std::vector<Drawn>& drawn) {
        for (std::size_t i = 0; i < drawn.size(); ++i)
            for (std::size_t j = i + 1; j < drawn.size(); ++j) {
                const QRectF common = drawn[i].frame & drawn[j].frame;
                EXPECT_FALSE(common.width() > 0.6 && common.height() > 0.6)
                    << drawn[i].name << " at " << describe(drawn[i].frame) << " and " << drawn[j].name
                    << " at " << describe(drawn[j].frame);
            }
    }

    /// Every text is within all that holds it, and what shows a part of it only shows all of its width.
    static void expectContained(const std::vector<Drawn>& drawn, const QQuickItem& root) {
        for (const Drawn& each : drawn) {
            if (!isText(*each.item)) continue;
            const QRectF whole = each.item->mapRectToItem(&root, inkOf(*each.item));
            for (const QQuickItem* above = each.item->parentItem(); above; above = above->parentItem()) {
                const QString kind = above->metaObject()->className();
                const bool isPlain = kind.contains("Column") || kind.contains("QQuickRow") ||
                                     kind == "QQuickContentItem" || above->width() <= 0;
                QRectF room = frameIn(root, *above).adjusted(-0.6, -0.6, 0.6, 0.6);
                const bool isInside = room.left() <= whole.left() && whole.right() <= room.right();
                const bool isBetween = room.top() <= whole.top() && whole.bottom() <= room.bottom();
                EXPECT_TRUE(isPlain || (isInside && (isBetween || clips(*above))))
                    << each.name << " at " << describe(whole) << " leaves " << kind.toStdString() << " at "
                    << describe(room);
                if (clips(*above) || above == &root) break;
            }
        }
    }

    /// Nothing but names and paths is cut short: what the program itself says can be read to its end.
    static void expectReadable(const std::vector<Drawn>& drawn) {
        for (const Drawn& each : drawn) {
            if (!isText(*each.item) || !each.item->property("truncated").toBool()) continue;
            EXPECT_TRUE(each.name.starts_with('/') || each.name.starts_with("A name"))
                << each.name << " is cut short";
        }
    }

  private:
    static void collect(const QQuickItem& item, const QQuickItem& root, std::vector<Drawn>& drawn) {
        for (QQuickItem* child : item.childItems()) {
            if (!child->isVisible() || child->opacity() == 0) continue;
            const std::string kind = child->metaObject()->className();
            const bool isSymbol = kind == "orvane::Symbol" || child->inherits("QQuickImage");
            if (isText(*child) || isSymbol) {
                const QRectF ink = isSymbol ? QRectF(QPointF(), child->size()) : inkOf(*child);
                const QRectF frame = seenPart(*child, child->mapRectToItem(&root, ink), root);
                const std::string name = isSymbol ? kind + child->property("name").toString().toStdString()
                                                  : child->property("text").toString().toStdString();
                if (!frame.isEmpty() && !name.empty()) drawn.push_back({child, frame, name});
            }
            collect(*child, root, drawn);
        }
    }

    const QFont before_ = QGuiApplication::font();
};

TEST_P(AnyFontTest, NothingOverlapsOrIsCutInAnyState) {
    ASSERT_TRUE(QFontDatabase::families().contains(QString(std::get<0>(GetParam()))));
    int states = 0;
    visitEveryState([&](const std::string& state, QQuickWindow& seen) {
        SCOPED_TRACE(state);
        ++states;
        QQuickItem& root = layer(seen);
        const auto drawn = drawnIn(root);
        EXPECT_GE(drawn.size(), 3U);
        expectNoOverlap(drawn);
        expectContained(drawn, root);
        expectReadable(drawn);
        if (const QString folder = qEnvironmentVariable("ORVANE_PICTURES"); !folder.isEmpty())
            seen.grabWindow().save(QStringLiteral("%1/%2-%3-%4.png")
                                       .arg(folder, state.c_str(), std::get<0>(GetParam()))
                                       .arg(std::get<1>(GetParam())));
    });
    EXPECT_EQ(states, 9);
}

INSTANTIATE_TEST_SUITE_P(FontsAndSizes, AnyFontTest,
                         testing::Combine(testing::Values("Inter", "DejaVu Sans", "Noto Sans"),
                                          testing::Values(1.0, 1.25)));

}  // namespace
}  // namespace orvane::test
