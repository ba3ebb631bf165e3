#pragma once

#include "ZrUtil/ZrWpt.h"

#include <QtTest/QtTest>

/// A waypoint whose fields all differ from each other and from the defaults.
inline ZrWpt FullWpt()
{
    ZrWpt wpt;
    wpt.name = QStringLiteral("North end");
    wpt.pseudo = QStringLiteral("Wpt: 3");
    wpt.filename = QStringLiteral("plan.dat");
    wpt.fileType = 200;
    wpt.uuid = QUuid(QStringLiteral("{11111111-2222-4333-8444-555555555555}"));
    wpt.gridId = QUuid(QStringLiteral("{aaaaaaaa-bbbb-4ccc-8ddd-eeeeeeeeeeee}"));
    wpt.colour = QColor(1, 2, 3, 4);
    wpt.lat = 50.12345678901;
    wpt.lng = -4.5;
    wpt.x = 421000.125;
    wpt.y = 5553000.5;
    wpt.z = 12.25;
    wpt.alt = 3.5;
    wpt.r = -10.5;
    wpt.p = 0.125;
    wpt.q = 1234567.5;
    wpt.rx = 1.75;
    wpt.rz = -2.75;
    wpt.speed = 0.75;
    wpt.time = 1602049684.5;
    wpt.spdType = -4;
    wpt.flags = 4294967295U;
    wpt.head = 359.5;
    wpt.headType = 5;
    wpt.zType = 6;
    wpt.atWpt = true;
    wpt.lookAt = QUuid(QStringLiteral("{99999999-8888-4777-8666-555555555555}"));
    wpt.type = 2;
    wpt.src = 255;
    wpt.shape = 7;
    wpt.burial = 0.25F;
    wpt.length = 1.5F;
    wpt.height = 2.5F;
    wpt.width = 4.5F;
    wpt.viz = 5.5F;
    wpt.bottomA = QLatin1Char('C');
    wpt.bottomN = 42;
    wpt.bottom = 9;
    wpt.veg = true;
    wpt.ripples = 6.5F;
    wpt.current = 7.5F;
    wpt.classA = 11;
    wpt.classB = 22;
    wpt.classC = 33;
    wpt.classD = 44;
    wpt.ricX = 421010.0625;
    wpt.ricY = 5553010.25;
    wpt.rit = -1.5;
    wpt.tp1X = 421001.5;
    wpt.tp1Y = 5553001.5;
    wpt.tp1Q = 100.25;
    wpt.tp2X = 421002.5;
    wpt.tp2Y = 5553002.5;
    wpt.tp2Q = 84.5;
    return wpt;
}

/// `FullWpt` in the tag-structured store: its items as "name=value".
inline QStringList FullItems()
{
    return {
        QStringLiteral("UUID={11111111-2222-4333-8444-555555555555}"),
        QStringLiteral("GridId={aaaaaaaa-bbbb-4ccc-8ddd-eeeeeeeeeeee}"),
        QStringLiteral("Pseudo=Wpt: 3"),
        QStringLiteral("Name=North end"),
        QStringLiteral("Colour=#010203"),
        QStringLiteral("Lat=50.1234567890"),
        QStringLiteral("Lng=-4.5000000000"),
        QStringLiteral("X=421000.1250000000"),
        QStringLiteral("Y=5553000.5000000000"),
        QStringLiteral("Z=12.25"),
        QStringLiteral("Alt=3.5"),
        QStringLiteral("R=-10.5"),
        QStringLiteral("P=0.125"),
        QStringLiteral("Q=1.23457e+06"),
        QStringLiteral("RX=1.75"),
        QStringLiteral("RZ=-2.75"),
        QStringLiteral("Speed=0.75"),
        QStringLiteral("SpdType=-4"),
        QStringLiteral("Flags=-1"),
        QStringLiteral("Head=359.5"),
        QStringLiteral("HeadType=5"),
        QStringLiteral("ZType=6"),
        QStringLiteral("AtWpt=true"),
        QStringLiteral("Time=1602049684.5000000000"),
        QStringLiteral("Filename=plan.dat"),
        QStringLiteral("FileType=200"),
        QStringLiteral("LookAt={99999999-8888-4777-8666-555555555555}"),
        QStringLiteral("Type=2"),
        QStringLiteral("RICX=421010.0625000000"),
        QStringLiteral("RICY=5553010.2500000000"),
        QStringLiteral("RIT=-1.5"),
        QStringLiteral("TP1X=421001.5000000000"),
        QStringLiteral("TP1Y=5553001.5000000000"),
        QStringLiteral("TP1Q=100.25"),
        QStringLiteral("TP2X=421002.5000000000"),
        QStringLiteral("TP2Y=5553002.5000000000"),
        QStringLiteral("TP2Q=84.5"),
        QStringLiteral("Src=255"),
        QStringLiteral("Shape=7"),
        QStringLiteral("Burial=0.25"),
        QStringLiteral("Length=1.5"),
        QStringLiteral("Height=2.5"),
        QStringLiteral("Width=4.5"),
        QStringLiteral("Viz=5.5"),
        QStringLiteral("BottomA=C"),
        QStringLiteral("BottomN=42"),
        QStringLiteral("Bottom=9"),
        QStringLiteral("Veg=true"),
        QStringLiteral("Ripples=6.5"),
        QStringLiteral("Current=7.5"),
        QStringLiteral("ClassA=11"),
        QStringLiteral("ClassB=22"),
        QStringLiteral("ClassC=33"),
        QStringLiteral("ClassD=44"),
    };
}

/// `FullWpt` in the JSON settings, one member a line, sorted by key.
inline QByteArrayList FullMembers()
{
    return {
        R"("GridId":"{aaaaaaaa-bbbb-4ccc-8ddd-eeeeeeeeeeee}")",
        R"("LookAt":"{99999999-8888-4777-8666-555555555555}")",
        R"("RICX":421010.0625)",
        R"("RICY":5553010.25)",
        R"("RIT":-1.5)",
        R"("TP1Q":100.25)",
        R"("TP1X":421001.5)",
        R"("TP1Y":5553001.5)",
        R"("TP2Q":84.5)",
        R"("TP2X":421002.5)",
        R"("TP2Y":5553002.5)",
        R"("UUID":"{11111111-2222-4333-8444-555555555555}")",
        R"("alt":3.5)",
        R"("at wpt":true)",
        R"("bottom":"9")",
        R"("bottomA":"C")",
        R"("bottomN":"42")",
        R"("burial":0.25)",
        R"("classA":"11")",
        R"("classB":"22")",
        R"("classC":"33")",
        R"("classD":"44")",
        R"("colour":"04010203")",
        R"("current":7.5)",
        R"("filename":"plan.dat")",
        R"("filetype":"200")",
        R"("flags":"4294967295")",
        R"("head":359.5)",
        R"("head type":"5")",
        R"("height":2.5)",
        R"("lat":50.12345678901)",
        R"("length":1.5)",
        R"("long":-4.5)",
        R"("name":"North end")",
        R"("p":0.125)",
        R"("pseudo":"Wpt: 3")",
        R"("q":1234567.5)",
        R"("r":-10.5)",
        R"("ripples":6.5)",
        R"("rx":1.75)",
        R"("rz":-2.75)",
        R"("shape":"7")",
        R"("speed":0.75)",
        R"("speedtype":"-4")",
        R"("src":"255")",
        R"("time":1602049684.5)",
        R"("type":"2")",
        R"("veg":true)",
        R"("viz":5.5)",
        R"("width":4.5)",
        R"("x":421000.125)",
        R"("y":5553000.5)",
        R"("z":12.25)",
        R"("z type":"6")",
    };
}
