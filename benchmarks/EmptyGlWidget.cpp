// The least a program with a QOpenGLWidget does: what the start of the application is measured against.

#include <QApplication>
#include <QOpenGLFunctions>
#include <QOpenGLWidget>
#include <QSurfaceFormat>

#include <cstdio>
#include <utility>

namespace {

class EmptyGlWidget : public QOpenGLWidget
{
protected:
    void paintGL() override
    {
        QOpenGLFunctions* const gl = context()->functions();
        gl->glClearColor(0.1F, 0.1F, 0.1F, 1.0F);
        gl->glClear(GL_COLOR_BUFFER_BIT | GL_DEPTH_BUFFER_BIT);
    }
};

} // namespace

int main(int argc, char** argv)
{
    QSurfaceFormat format;
    format.setRenderableType(QSurfaceFormat::OpenGL);
    format.setVersion(2, 0);
    format.setDepthBufferSize(24);
    format.setStencilBufferSize(8);
    format.setSwapInterval(1);
    QSurfaceFormat::setDefaultFormat(format);
    QApplication app(argc, argv);
    EmptyGlWidget view;
    view.resize(1280, 800);
    QObject::connect(&view, &QOpenGLWidget::frameSwapped, &view, [isTold = false]() mutable {
        if (std::exchange(isTold, true))
            return;
        std::puts("first frame");
        std::fflush(stdout);
        QCoreApplication::quit();
    });
    view.show();
    return QApplication::exec();
}
