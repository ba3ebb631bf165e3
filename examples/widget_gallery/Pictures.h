#pragma once

#include <QString>

class Gallery;

/// Writes PNG pictures of the gallery into the folder \p dir: every scale with metric and imperial units, and
/// every keyboard. The same ones at every run. False, with \p failed, when one cannot be written.
bool WritePictures(Gallery& gallery, const QString& dir, QString& failed);
