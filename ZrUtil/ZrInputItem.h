#pragma once

#include <QChar>
#include <QImage>
#include <QRect>
#include <QString>

/// What a key of `ZrInputDlg` does.
enum eZriAction : int
{
    zriKey = 0, ///< enters its character
    zriDelete, ///< removes a character
    zriLeft, ///< cursor one to the left
    zriRight, ///< cursor one to the right
    zriStart, ///< cursor to the start
    zriEnd, ///< cursor to the end
    zriNegate, ///< the opposite value
    zriCaps, ///< capital letters on and off
    zriSymbols, ///< letters or symbols
    zriOk, ///< takes the text over
    zriCancel ///< leaves it
};

/// One key of the keyboard on the screen. A plain value.
class ZrInputItem
{
public:
    QRect rect; ///< where it is, pixels of the dialog
    QChar ch; ///< what it enters
    eZriAction action = zriKey;
    QString label; ///< what stands on it; empty: the character
    QString img; ///< resource of the picture that stands on it instead, an alpha mask
    QImage picture; ///< the picture read; null when there is none: a drawn sign replaces it
    bool enabled = true; ///< a disabled key is shown, and does nothing
};
