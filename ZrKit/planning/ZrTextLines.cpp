#include "ZrKit/planning/ZrTextLines.h"

#include <QTextCodec>

#include <algorithm>

namespace {

/// The offset behind the string that begins at \p offset.
int BehindString(const QByteArray& json, int offset)
{
    for (++offset; offset < json.size() && json[offset] != '"'; ++offset)
        if (json[offset] == '\\')
            ++offset;
    return std::min(offset + 1, json.size());
}

bool IsSpace(char c)
{
    return c == ' ' || c == '\t' || c == '\n' || c == '\r';
}

} // namespace

int ZrTextLines::OfOffset(const QByteArray& text, int offset)
{
    const int end = std::clamp(offset, 0, text.size());
    return static_cast<int>(std::count(text.begin(), text.begin() + end, '\n')) + 1;
}

int ZrTextLines::OfBadUtf8(const QByteArray& text)
{
    const QTextCodec* codec = QTextCodec::codecForName("UTF-8");
    int line = 1;
    for (int begin = 0; begin < text.size(); ++line) {
        const int found = text.indexOf('\n', begin);
        const int end = found < 0 ? text.size() : found;
        QTextCodec::ConverterState state;
        codec->toUnicode(text.constData() + begin, end - begin, &state);
        if (state.invalidChars > 0 || state.remainingChars > 0)
            return line;
        begin = end + 1;
    }
    return 0;
}

int ZrTextLines::OfElement(const QByteArray& json, const char* member, int index)
{
    int depth = 0;
    int element = -1;
    bool isNext = false; // what comes is an element of the array
    bool inArray = false;
    QByteArray key;
    for (int i = 0; i < json.size();) {
        const char c = json[i];
        if (isNext && !IsSpace(c)) {
            isNext = false;
            if (++element == index)
                return OfOffset(json, i);
        }
        if (c == '"') {
            const int end = BehindString(json, i);
            if (depth == 1)
                key = json.mid(i + 1, end - i - 2);
            i = end;
            continue;
        }
        if (c == '[' || c == '{') {
            ++depth;
            inArray = inArray || (depth == 2 && c == '[' && key == member);
            isNext = inArray && depth == 2;
        } else if (c == ']' || c == '}') {
            if (--depth < 2)
                inArray = false;
        } else if (c == ',') {
            isNext = inArray && depth == 2;
        }
        ++i;
    }
    return 0;
}
