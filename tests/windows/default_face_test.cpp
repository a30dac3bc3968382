// The overlay's fonts name no face: Windows' font mapper gives them its
// default face, Arial. The test prefix must give a face of the same
// metrics, or every text measures wider or narrower than a user sees it and
// the panels' geometry cannot be judged here. Liberation Sans is drawn to
// Arial's advance widths; with it installed Wine takes it for a font that
// names no face, and the prefix maps the name "Arial" to it too.
#include <windows.h>

#include <gtest/gtest.h>

#include <string>

#include "common/gdi_guards.h"
#include "overlay/layouts/font_table.h"
#include "overlay/windows/overlay_fonts.h"

namespace {

struct ScreenDc {
  ScreenDc() : dc(GetDC(nullptr)) {}
  ~ScreenDc() { ReleaseDC(nullptr, dc); }
  HDC dc;
};

std::wstring FaceOf(HFONT font) {
  ScreenDc screen;
  const HGDIOBJ old = SelectObject(screen.dc, font);
  wchar_t face[LF_FACESIZE] = L"(sentinel)";
  GetTextFaceW(screen.dc, LF_FACESIZE, face);
  SelectObject(screen.dc, old);
  return face;
}

SIZE ExtentOf(HFONT font, const std::wstring& text) {
  ScreenDc screen;
  const HGDIOBJ old = SelectObject(screen.dc, font);
  SIZE size{-1, -1};
  GetTextExtentPoint32W(screen.dc, text.c_str(), static_cast<int>(text.size()), &size);
  SelectObject(screen.dc, old);
  return size;
}

// The same request as the overlay's, with a face named.
HFONT NamedFont(const FontSpec& wanted, const wchar_t* face) {
  return CreateFontW(wanted.height, 0, 0, 0, wanted.weight, wanted.italic ? TRUE : FALSE, FALSE, FALSE, 0,
                     OUT_DEFAULT_PRECIS, CLIP_DEFAULT_PRECIS, DEFAULT_QUALITY, DEFAULT_PITCH, face);
}

const wchar_t* const kSamples[] = {
    L"Learn More",
    L"Hide",
    L"No other users are currently viewing or editing this file. You can safely make changes.",
    L"LAST MODIFIED BY",
    L"Save my changes as a separate copy",
    L"Retrieving more details...",
    L"This file has been moved to a new location",
};

class DefaultFace : public testing::TestWithParam<FontRole> {};

TEST_P(DefaultFace, IsLiberationSansForAFontThatNamesNoFace) {
  const HFONT font = OverlayFont(GetParam());
  ASSERT_NE(nullptr, font);
  EXPECT_EQ(std::wstring(L"Liberation Sans"), FaceOf(font));
}

TEST_P(DefaultFace, MeasuresTextsAsTheMetricCompatibleFaceDoes) {
  const HFONT font = OverlayFont(GetParam());
  ASSERT_NE(nullptr, font);
  const UniqueHfont liberation(NamedFont(FontSpecOf(GetParam()), L"Liberation Sans"));
  ASSERT_TRUE(liberation);
  ASSERT_EQ(std::wstring(L"Liberation Sans"), FaceOf(liberation.get()));
  for (const wchar_t* sample : kSamples) {
    const SIZE ours = ExtentOf(font, sample);
    const SIZE theirs = ExtentOf(liberation.get(), sample);
    EXPECT_EQ(theirs.cx, ours.cx) << "width of \"" << testing::PrintToString(std::wstring(sample)) << "\"";
    EXPECT_EQ(theirs.cy, ours.cy) << "height of \"" << testing::PrintToString(std::wstring(sample)) << "\"";
  }
}

TEST_P(DefaultFace, MeasuresTextsAsAFontNamingArialDoes) {
  const HFONT font = OverlayFont(GetParam());
  ASSERT_NE(nullptr, font);
  const UniqueHfont arial(NamedFont(FontSpecOf(GetParam()), L"Arial"));
  ASSERT_TRUE(arial);
  for (const wchar_t* sample : kSamples) {
    EXPECT_EQ(ExtentOf(arial.get(), sample).cx, ExtentOf(font, sample).cx) << testing::PrintToString(std::wstring(sample));
  }
}

std::string RoleName(const testing::TestParamInfo<FontRole>& info) {
  switch (info.param) {
    case FontRole::Title: return "Title";
    case FontRole::Body: return "Body";
    case FontRole::BodyItalic: return "BodyItalic";
    case FontRole::WaitItalic: return "WaitItalic";
    case FontRole::OverlayTitle: return "OverlayTitle";
    case FontRole::Section: return "Section";
    case FontRole::DefaultBold: return "DefaultBold";
    default: return "None";
  }
}

INSTANTIATE_TEST_SUITE_P(EveryRole, DefaultFace, testing::ValuesIn(kFontRoles), RoleName);

// Arial's advance widths in its own units (2,048 to the em), as its
// horizontal metrics table gives them. At an em of 2,048 pixels a font that
// names no face must advance by exactly these: the face is metric-compatible
// with Arial, not merely a sans face of about the same width.
TEST(DefaultFace, AdvancesByArialsWidthsAtAnEmOf2048Pixels) {
  const UniqueHfont big(CreateFontW(-2048, 0, 0, 0, 400, FALSE, FALSE, FALSE, 0, OUT_DEFAULT_PRECIS, CLIP_DEFAULT_PRECIS,
                                    DEFAULT_QUALITY, DEFAULT_PITCH, nullptr));
  ASSERT_TRUE(big);
  struct Advance {
    wchar_t glyph;
    int width;
  };
  const Advance arial[] = {{L' ', 569},  {L'a', 1139}, {L'e', 1139}, {L'n', 1139}, {L'o', 1139},
                           {L'i', 455},  {L'l', 455},  {L'r', 682},  {L'c', 1024}, {L's', 1024},
                           {L't', 569},  {L'm', 1706}, {L'L', 1139}, {L'M', 1706}, {L'H', 1479}};
  ScreenDc screen;
  const HGDIOBJ old = SelectObject(screen.dc, big.get());
  for (const Advance& expected : arial) {
    INT width = -1;
    ASSERT_TRUE(GetCharWidth32W(screen.dc, expected.glyph, expected.glyph, &width));
    EXPECT_EQ(expected.width, width) << "advance of '" << static_cast<char>(expected.glyph) << "'";
  }
  SelectObject(screen.dc, old);
}

}  // namespace
