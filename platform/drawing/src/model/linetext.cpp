// SPDX-License-Identifier: MIT
#include "model/linetext.h"

namespace lm::drawing {

OdString contentsOf(const OdString& text) {
    WideString out;
    const WideView view = text.view();
    for (std::size_t i = 0; i < view.size(); ++i) {
        const WideChar unit = view[i];
        if (unit == '\r' && i + 1 < view.size() && view[i + 1] == '\n') continue;
        if (unit == '\n') {
            out += WideString{'\\', 'P'};
            continue;
        }
        if (unit == '\\' || unit == '{' || unit == '}') out.push_back('\\');
        out.push_back(unit);
    }
    return OdString(WideView(out));
}

namespace {

bool isOneOf(WideChar unit, std::string_view set) {
    return unit < 0x80 && set.find(static_cast<char>(unit)) != std::string_view::npos;
}

/// Goes through contents and puts down what they show.
class PlainText {
public:
    explicit PlainText(WideView contents) : m_rest(contents) {}

    OdString take() {
        while (!m_rest.empty()) {
            const WideChar unit = next();
            if (unit == '\\' && !m_rest.empty())
                code();
            else if (unit != '{' && unit != '}') // a group shows nothing of itself
                m_out.push_back(unit);
        }
        return OdString(WideView(m_out));
    }

private:
    WideChar next() {
        const WideChar unit = m_rest.front();
        m_rest.remove_prefix(1);
        return unit;
    }

    void code() {
        const WideChar unit = next();
        if (isOneOf(unit, "\\{}")) return m_out.push_back(unit);
        if (isOneOf(unit, "PNX")) return m_out.push_back('\n'); // a paragraph, a column, a line above
        if (unit == '~') return m_out.push_back(' ');           // a blank that doesn't break
        if (isOneOf(unit, "LlOoKk")) return;                    // lines under, over and through the text
        if (isOneOf(unit, "ACcFfHQTWp") && isClosed()) return skipValue();
        if (unit == 'S' && isClosed()) return fraction();
        m_out.push_back('\\');
        m_out.push_back(unit);
    }

    bool isClosed() const { return m_rest.find(WideChar{';'}) != WideView::npos; }
    void skipValue() { m_rest.remove_prefix(m_rest.find(WideChar{';'}) + 1); }

    /// Two texts, one above the other, with a mark between them that tells how they stand.
    void fraction() {
        while (!m_rest.empty()) {
            WideChar unit = next();
            if (unit == ';') return;
            const bool isMark = isOneOf(unit, "^/#");
            if (unit == '\\' && !m_rest.empty()) unit = next();
            m_out.push_back(isMark ? WideChar{'/'} : unit);
        }
    }

    WideView m_rest;
    WideString m_out;
};

} // namespace

OdString plainTextOf(const OdString& contents) {
    return PlainText(contents.view()).take();
}

} // namespace lm::drawing
