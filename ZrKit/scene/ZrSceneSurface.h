#pragma once

#include "ZrKit/ZrKitExport.h"
#include "ZrKit/map/ZrMapProgram.h"
#include "ZrKit/scene/ZrSceneCamera.h"
#include "ZrKit/scene/ZrSceneFloor.h"
#include "ZrKit/scene/ZrScenePose.h"
#include "ZrUtil/ZglObject.h"
#include "ZrUtil/ZrGlSurface.h"

#include <QImage>
#include <QPointer>
#include <QVector3D>

#include <memory>
#include <vector>

class QOpenGLContext;
class QOpenGLFramebufferObject;

/// A vehicle in its surroundings: mesh, trail, plan, sea floor, seen by a camera.
///
/// \code
/// ZglObject::LoadObj(":/vessel.obj", scene.m_mesh);
/// scene.m_pose.position = {0, 0, -12};
/// scene.SetFloor(floor);
/// scene.OnCreate(); // context current
/// scene.Render();   // in every frame
/// \endcode
///
/// Positions are metres: x east, y north, z up, from a place near by that the page chooses. Floor and mesh
/// are uploaded once; the trail as far as it has grown. The floor has the colours of depths
/// (`ZrDepthColours`) from `Shallowest` to `Deepest`, and fades where the soundings end. Needs a depth
/// buffer. What does not build is not drawn, and the debug log has a line. GUI thread only.
class ZR_KIT_EXPORT ZrSceneSurface : public ZrGlSurface
{
    Q_OBJECT

public:
    static constexpr int MostTrail = 200000; ///< positions; of more the oldest go
    static constexpr float LeastDepths = 2.0F; ///< metres that the colours go over, also of a flat floor

    ZrSceneCamera m_camera;
    ZrScenePose m_pose;
    ZglObject m_mesh; ///< of the vehicle: x ahead, y up, z to starboard; before `OnCreate`
    QImage m_meshImage; ///< its texture; may be null
    QColor m_meshColour = QColor(255, 255, 255);
    float m_meshScale = 1.0F;
    bool m_hasVehicle = true;
    bool m_hasSurface = true; ///< the plane of the water's surface is shown as a grid
    float m_exaggeration = 1.0F; ///< of heights, above 0
    int m_samples
        = 4; ///< of a pixel, for smooth edges; 1 for none; none too where the driver has no such buffers
    float m_contourStep = 0.0F; ///< metres of depth between lines on the floor; 0 for none

    explicit ZrSceneSurface(QObject* parent = nullptr);
    ~ZrSceneSurface() override;

    void SetFloor(ZrSceneFloor floor);

    const ZrSceneFloor& Floor() const { return m_floor; }

    float Shallowest() const; ///< metres below the surface, of the first colour of the floor
    float Deepest() const; ///< likewise of the last one

    void AddToTrail(const QVector3D& position);
    void SetTrail(std::vector<QVector3D> trail);
    void SetPlan(std::vector<QVector3D> plan); ///< a line through these

    const std::vector<QVector3D>& Trail() const { return m_trail; }

    void OnCreate() override;
    void Render() override;
    void OnResize(int width, int height) override;
    void Release(); ///< deletes its GL objects; the context is current

private:
    /// Vertices of position, normal and texture coordinates in a buffer object.
    struct Buffer
    {
        unsigned id = 0;
        int capacity = 0; ///< vertices
        int count = 0; ///< vertices that are in it
    };

    void Forget();
    void Upload(Buffer& buffer, const std::vector<float>& vertices, int total);
    void UploadMesh();
    void UploadFloor();
    void UploadLine(Buffer& buffer, const std::vector<QVector3D>& line);
    void UploadGrid();
    bool BeginSmooth();
    void EndSmooth();
    void BeginViewport();
    bool Begin();
    void SetModel(const QMatrix4x4& model);
    void SetColour(const QColor& colour, bool isLit);
    void SetRamp();
    void Bind(const Buffer& buffer);
    void DrawFloor();
    void DrawLines();
    void DrawVehicle();
    void End();

    ZrMapProgram m_program;
    ZrSceneFloor m_floor;
    std::vector<QVector3D> m_trail;
    std::vector<QVector3D> m_plan;
    Buffer m_meshBuffer;
    Buffer m_floorBuffer;
    unsigned m_floorIndices = 0;
    Buffer m_trailBuffer;
    Buffer m_planBuffer;
    Buffer m_gridBuffer;
    unsigned m_meshTexture = 0;
    bool m_isFloorDue = false;
    bool m_isPlanDue = false;
    int m_width = 0;
    int m_height = 0;
    std::unique_ptr<QOpenGLFramebufferObject> m_smooth; ///< of many samples; null while it is not used
    int m_noSamples = 0; ///< so many could not be had at this size; not tried again
    int m_before = 0; ///< the framebuffer that is drawn into in the end
    QPointer<QOpenGLContext> m_context;
};
