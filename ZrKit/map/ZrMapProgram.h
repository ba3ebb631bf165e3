#pragma once

#include "ZrKit/ZrKitExport.h"

#include <QByteArray>
#include <QHash>
#include <QString>

class ZrGlSurface;
struct ZrMapSplit;

/// A shader program of a layer: built at its first use, its locations looked up once.
///
/// The context must be current. A program that does not build is not tried again; the debug log has the
/// reason. While the surface is not ready nothing is tried. GUI thread only.
class ZR_KIT_EXPORT ZrMapProgram
{
public:
    ZrMapProgram(QString vertex, QString fragment); ///< resources of the two shaders

    /// Makes it current and sets "uMatrix" to the projection of \p surface. False when it did not build and
    /// while the surface is not ready.
    bool Use(ZrGlSurface& surface);

    /// The location of a uniform, -1 for none. After `Use`.
    int Uniform(ZrGlSurface& surface, const char* name);

    /// The location of an attribute, -1 for none. After `Use`.
    int Attribute(ZrGlSurface& surface, const char* name);

    /// Sets "uMap" and the uniforms of split doubles. After `Use`.
    void SetSplit(ZrGlSurface& surface, const ZrMapSplit& split);

    void Release(ZrGlSurface& surface); ///< deletes the program
    void Forget(); ///< the context is gone, and the program with it

private:
    QString m_vertex;
    QString m_fragment;
    unsigned m_program = 0;
    bool m_isTried = false;
    QHash<QByteArray, int> m_uniforms;
    QHash<QByteArray, int> m_attributes;
};
