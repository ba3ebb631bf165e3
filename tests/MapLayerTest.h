#pragma once

// What the tests of a layer of a map share.

#include "GlView.h"
#include "ZrKit/map/ZrMapView.h"

#include <QtWidgets>

#include <memory>

/// What each test function begins and ends with, and what it paints with. Run once for each kind of context.
template <class Layer> class MapLayerTest : public QObject
{
protected:
    static void AddContexts()
    {
        QTest::addColumn<gl::Api>("api");
        QTest::newRow("GL") << gl::Api::desktop;
        QTest::newRow("ES") << gl::Api::es;
    }

    /// A context with a surface over all of it, in place of the ones before.
    void MakeContext(const QSize& size)
    {
        QFETCH_GLOBAL(gl::Api, api);
        m_context = std::make_unique<gl::Context>(api, size);
        QVERIFY2(m_context->Error().isEmpty(), qPrintable(m_context->Error()));
        m_surface = std::make_unique<GlView>();
        m_surface->m_background = QStringLiteral(":/back_light.png");
        m_surface->ZrglSetViewport(0, 0, size.width(), size.height());
        m_surface->OnCreate();
        QCOMPARE(m_context->TakeErrors(), GLenum(GL_NO_ERROR));
    }

    /// No error is left behind, nor by the release of the layer.
    void EndContext()
    {
        if (m_context && m_surface) {
            QCOMPARE(m_context->TakeErrors(), GLenum(GL_NO_ERROR));
            m_layer->Release(*m_surface);
            QCOMPARE(m_context->TakeErrors(), GLenum(GL_NO_ERROR));
        }
        m_layer.reset();
        m_surface.reset();
        m_context.reset();
    }

    void Paint()
    {
        m_view.Apply(*m_surface);
        m_layer->Paint(*m_surface, m_view);
    }

    /// Painted over \p background; opaque, since blending changes the alpha.
    QImage Painted(const QColor& background = Qt::black)
    {
        m_context->Clear(background);
        Paint();
        return m_context->Read().convertToFormat(QImage::Format_RGB32);
    }

    std::unique_ptr<gl::Context> m_context;
    std::unique_ptr<GlView> m_surface;
    std::unique_ptr<Layer> m_layer;
    ZrMapView m_view;
};
