// Where the parts of the page "Plan" stand: what the map shows of itself is covered by nothing, at every size
// of the window and every scale.

#include "SurveyPlanWindow.h"
#include "ZrUtil/ZrFmApp.h"
#include "ZrUtil/ZrFormMgr.h"

#include <functional>
#include <utility>

class tst_SurveyPlanPlaces : public SurveyPlanWindow
{
    Q_OBJECT

private Q_SLOTS:

    void furniture_data() { Sizes(); }

    void furniture();

    void controls_data() { Sizes(); }

    void controls();
    void textsGoBack();

private:
    static void Sizes();
    void OpenAt(const QSize& size, int scale);
    QVector<std::pair<QString, std::function<void()>>> States();
    QRectF OnPage(const QRectF& pixels) const;
    QVector<QWidget*> Shown() const;
    QVector<QRect> Covers() const;
};

void tst_SurveyPlanPlaces::Sizes()
{
    QTest::addColumn<QSize>("size");
    QTest::addColumn<int>("scale");
    const QVector<QSize> sizes{{900, 600}, {1280, 800}, {1920, 1080}, {2560, 1440}};
    const QStringList scales{QStringLiteral("small"), QStringLiteral("middle"), QStringLiteral("large")};
    for (const QSize& size : sizes) {
        for (int scale = 0; scale < scales.size(); ++scale) {
            const QString name
                = QStringLiteral("%1x%2 %3").arg(size.width()).arg(size.height()).arg(scales[scale]);
            QTest::newRow(qPrintable(name)) << size << scale;
        }
    }
}

void tst_SurveyPlanPlaces::OpenAt(const QSize& size, int scale)
{
    m_view->resize(size);
    ZrFmApp* app = nullptr;
    for (ZrForm* form : m_view->forms().m_forms)
        app = app ? app : qobject_cast<ZrFmApp*>(form);
    QVERIFY(app);
    if (scale == 0)
        app->OnSmallest();
    else if (scale == 1)
        app->OnSmall();
    else
        app->OnLargest();
    QTRY_COMPARE(m_view->Page()->size(), size);
    AddRoute();
    ZrArea area{QStringLiteral("Bay"), {}};
    for (const QPointF& pixel : {QPointF(200, 100), QPointF(400, 100), QPointF(400, 200), QPointF(200, 200)})
        area.ring.push_back(m_page->Chart().ToGeo(m_page->Map().m_camera.ToWorld(pixel)));
    Plan().SetAreas({area});
    Settle();
    QTest::keyClick(m_view.get(), Qt::Key_F);
}

/// What can be in front of the map, each with its name.
QVector<std::pair<QString, std::function<void()>>> tst_SurveyPlanPlaces::States()
{
    const auto key = [this](Qt::Key which) { QTest::keyClick(m_view.get(), which); };
    const auto middle = [this] {
        const ZrArea& area = Plan().Areas().front();
        const QPointF world
            = (m_page->Chart().ToWorld(area.ring[0]) + m_page->Chart().ToWorld(area.ring[2])) / 2.0;
        return (m_page->Map().m_camera.ToPixel(world) / m_panel->devicePixelRatioF()).toPoint();
    };
    return {
        {QStringLiteral("nothing"), [key] { key(Qt::Key_Escape); }},
        {QStringLiteral("leg"), [this] { Tap((PixelOf(0) + PixelOf(1)) / 2); }},
        {QStringLiteral("area"), [this, middle] { Tap(middle()); }},
        {QStringLiteral("corners"), [this] { Click("corners"); }},
        {QStringLiteral("adding"), [key] { key(Qt::Key_A); }},
        {QStringLiteral("drawing"), [key] { key(Qt::Key_D); }},
        {QStringLiteral("pattern"),
            [key] {
                key(Qt::Key_Escape);
                key(Qt::Key_P);
            }},
    };
}

/// Pixels of the map's view on the page.
QRectF tst_SurveyPlanPlaces::OnPage(const QRectF& pixels) const
{
    const double ratio = m_panel->devicePixelRatioF();
    return QRectF(pixels.topLeft() / ratio, pixels.size() / ratio)
        .translated(m_panel->mapTo(m_page, QPoint()));
}

/// What stands in front of the map, or beside it.
QVector<QWidget*> tst_SurveyPlanPlaces::Shown() const
{
    QVector<QWidget*> shown;
    for (QWidget* child : m_page->findChildren<QWidget*>(QString(), Qt::FindDirectChildrenOnly)) {
        if (child->isVisible() && child != m_panel)
            shown.append(child);
    }
    return shown;
}

/// Likewise, and what is painted behind some of it.
QVector<QRect> tst_SurveyPlanPlaces::Covers() const
{
    QVector<QRect> rects;
    for (const QWidget* child : Shown())
        rects.append(child->geometry());
    if (!m_page->Strip().isEmpty())
        rects.append(m_page->Strip());
    return rects;
}

void tst_SurveyPlanPlaces::furniture()
{
    QFETCH(QSize, size);
    QFETCH(int, scale);
    OpenAt(size, scale);
    for (const auto& state : States()) {
        state.second();
        Settle();
        const ZrMapSurface& map = m_page->Map();
        const QRectF north = OnPage(m_page->Grid().NorthArrowRect(map.m_camera, map.m_pixelFactor));
        const QRectF bar = OnPage(m_page->Grid().ScaleBarRect(map.m_camera, map.m_pixelFactor));
        const QByteArray name = state.first.toUtf8();
        QVERIFY2(!north.isEmpty() && !bar.isEmpty(), name.constData());
        QVERIFY2(!north.intersects(bar), name.constData());
        for (const QRectF& mark : {north, bar}) {
            QVERIFY2(QRectF(m_panel->geometry()).contains(mark), name.constData());
            for (const QRect& cover : Covers())
                QVERIFY2(!QRectF(cover).intersects(mark), name.constData());
        }
    }
}

/// No control stands in front of another one, or beyond the page.
void tst_SurveyPlanPlaces::controls()
{
    QFETCH(QSize, size);
    QFETCH(int, scale);
    OpenAt(size, scale);
    for (const auto& state : States()) {
        state.second();
        Settle();
        const QByteArray name = state.first.toUtf8();
        const QVector<QWidget*> shown = Shown();
        for (int i = 0; i < shown.size(); ++i) {
            const QString who = state.first + QLatin1Char(' ') + shown[i]->objectName();
            QVERIFY2(m_page->rect().contains(shown[i]->geometry()), qPrintable(who));
            for (int j = 0; j < i; ++j) {
                QVERIFY2(!shown[i]->geometry().intersects(shown[j]->geometry()),
                    qPrintable(who + QLatin1Char(' ') + shown[j]->objectName()));
            }
        }
    }
}

/// The mark is where it was when the strip has gone.
void tst_SurveyPlanPlaces::textsGoBack()
{
    AddRoute();
    const ZrMapSurface& map = m_page->Map();
    const QRectF before = m_page->Grid().NorthArrowRect(map.m_camera, map.m_pixelFactor);
    QTest::keyClick(m_view.get(), Qt::Key_D);
    const QRectF beside = m_page->Grid().NorthArrowRect(map.m_camera, map.m_pixelFactor);
    QVERIFY(beside.top() > before.top());
    // It turns the map where it is shown, and adds no corner there.
    m_page->Map().m_camera.SetRotation(30.0);
    Tap((beside.center() / m_panel->devicePixelRatioF()).toPoint());
    QCOMPARE(m_page->Map().m_camera.Rotation(), 0.0);
    QTest::keyClick(m_view.get(), Qt::Key_Escape);
    QVERIFY(Plan().Areas().empty());
    QCOMPARE(m_page->Grid().NorthArrowRect(map.m_camera, map.m_pixelFactor), before);
}

GL_TEST_MAIN(tst_SurveyPlanPlaces)
#include "tst_SurveyPlanPlaces.moc"
