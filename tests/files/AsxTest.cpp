// Play lists: which titles they give, and what is none.
#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "TitleFile.h"

namespace {

// The titles as in "0=Mix|2=b|", or "refused".
std::string Asx(const std::string& text) {
    TitleFile file;
    if (file.ReadAsx(text) == 0) {
        return "refused";
    }
    std::string all;
    for (int number = 0; number < TitleFile::kTitles; ++number) {
        char title[kTitleSize];
        if (file.GetImportTitle(number, title) != 0) {
            all += std::to_string(number) + "=" + title + "|";
        }
    }
    return all;
}

// In a play list, and in its first entry.
std::string InAsx(const std::string& text) {
    return Asx("<ASX>" + text + "</ASX>");
}
std::string InEntry(const std::string& text) {
    return InAsx("<ENTRY>" + text + "</ENTRY>");
}

constexpr char kRefused[] = "refused";

}  // namespace

TEST(Asx, GivesTheTitlesOfTheListAndItsEntries) {
    EXPECT_EQ(Asx("\r\n <asx version = \"3.0\">\n<title>Mix</title>\n"
                  "<Entry><Title>One</Title><REF HREF=\"a.mp3\" /></Entry>\n"
                  "<ENTRY><REF HREF=\"b\"/><TITLE> \n Two\n</TITLE></ENTRY ></ASX > junk <"),
              "0=Mix|1=One|2=Two |");
    EXPECT_EQ(InAsx("<ENTRY></ENTRY><ENTRYREF HREF=\"x\"/><ENTRY><TITLE>b</TITLE></ENTRY>"), "2=b|");
    EXPECT_EQ(InAsx("<ENTRY><TITLE>a</TITLE></ENTRY><TITLE>Late</TITLE>"), "0=Late|1=a|");
    EXPECT_EQ(InAsx("<REPEAT COUNT=\"2\"><ENTRY><TITLE>a</TITLE></ENTRY></REPEAT><EVENT><ENTRY><TITLE>b</TITLE></ENTRY>"
                    "</EVENT><ENTRY><TITLE>c</TITLE></ENTRY>"),
              "1=c|");
    EXPECT_EQ(InEntry("<TITLE>a</TITLE><TITLE>b</TITLE><PARAM NAME=\"NAME\" VALUE=\"c\" />"), "1=a|");
    EXPECT_EQ(InEntry("<TITLE>a< /TITLE><AUTHOR>b</AUTHOR junk><REF>< /REF>"), "1=a|");
    EXPECT_EQ(InEntry("<TITLE></TITLE><TITLE> \t</TITLE><ABSTRACT>x</ABSTRACT><AUTHOR>y</AUTHOR>"), "");
    EXPECT_EQ(InEntry("<TITLE>" + std::string(200, 'x') + "</TITLE>"), "1=" + std::string(32, 'x') + "|");
    std::string entries;
    for (int number = 1; number <= 120; ++number) {
        entries += "<ENTRY><TITLE>t</TITLE></ENTRY>";
    }
    EXPECT_EQ(InAsx(entries).substr(0, 10), "1=t|2=t|3=");
    EXPECT_NE(InAsx(entries).find("99=t|"), std::string::npos);
}

TEST(Asx, ParametersMayNameThings) {
    EXPECT_EQ(InAsx("<PARAM name=\"Name\" value=\"List a\"/><ENTRY><PARAM NAME = \"NAME\" VALUE = \"b\" /></ENTRY>"),
              "0=List a|1=b|");
    EXPECT_EQ(InAsx("<ENTRY></ENTRY><PARAM NAME=\"NAME\" VALUE=\"Late\" />"), "0=Late|");
    EXPECT_EQ(InAsx("<REPEAT><ENTRY><PARAM NAME=\"NAME\" VALUE=\"x\" /></ENTRY></REPEAT>"), "");
    EXPECT_EQ(InEntry("<PARAM VALUE=\"x\" NAME=\"NAME\" />"), "") << "the name has to come first";
    EXPECT_EQ(InEntry("<PARAM NAME=\"NAME\" VALUE=\"" + std::string(120, 'v') + "\" />"), "1=" + std::string(32, 'v') + "|");
    EXPECT_EQ(InEntry("<REF HREF=>x />"), "") << "what is passed over in place of a quote may be the end of the tag";
    EXPECT_EQ(InEntry("<PARAM NAME=\"NAME\" VALUE=\"\" />"), "");
    EXPECT_EQ(InEntry("<PARAM NAME=\"OTHER\" VALUE=\"x\" />"), "");
    EXPECT_EQ(InAsx("<ENTRY NAME=\"NAME\" VALUE=\"x\"><REF NAME=\"NAME\" VALUE=\"y\" /></ENTRY>"), "") << "no parameter";
    EXPECT_EQ(InEntry("<PARAM NAME=\"NAME\" VALUE=\"x\" VALUE=\"y\" />"), "1=x|");
    EXPECT_EQ(InEntry("<PARAM NAME=NAME VALUE=\"x\" />"), "") << "without quotes a value is none";
    EXPECT_EQ(InEntry("<PARAM NA ME=\"NAME\" V A L U E=\"x\"/>"), "1=x|");
    EXPECT_EQ(InEntry("<REF HREF=\"a\"><DURATION VALUE=\"1\"/><PREVIEWDURATION X=\"1\"/></REF><BANNER X=\"y\" >"
                      "<ABSTRACT>z</ABSTRACT><MOREINFO A=\"b\"/></BANNER>"),
              "");
    EXPECT_EQ(InEntry("<BASE " + std::string(99, 'n') + "=\"x\" />"), "");
    EXPECT_EQ(InEntry("<BASE " + std::string(100, 'n') + "=\"x\" />"), kRefused);
    EXPECT_EQ(InEntry("<BASE A=\"" + std::string(500, '>') + "\" />"), "");
}

// Every element in every place, in each of its forms.
TEST(Asx, ElementsStandWhereTheyBelong) {
    enum Form { kNever, kText, kContainer, kContainerOrEmpty, kEmpty };
    const struct {
        const char* name;
        Form form;
        const char* parents;
    } elements[] = {
        {"!--", kNever, ""},
        {"ABSTRACT", kText, " ASX BANNER ENTRY "},
        {"ASX", kContainer, " "},
        {"AUTHOR", kText, " ASX ENTRY "},
        {"BANNER", kContainerOrEmpty, " ASX ENTRY "},
        {"BASE", kEmpty, " ASX ENTRY "},
        {"COPYRIGHT", kText, " ASX ENTRY "},
        {"DURATION", kEmpty, " ENTRY REF "},
        {"ENDMARKER", kEmpty, " ENTRY REF "},
        {"ENTRY", kContainer, " ASX EVENT REPEAT "},
        {"ENTRYREF", kEmpty, " ASX EVENT REPEAT "},
        {"EVENT", kContainer, " ASX "},
        {"LOGO", kEmpty, " ASX ENTRY "},
        {"MOREINFO", kEmpty, " ASX BANNER ENTRY "},
        {"PARAM", kEmpty, " ASX ENTRY "},
        {"PREVIEWDURATION", kEmpty, " ASX ENTRY REF "},
        {"REF", kContainerOrEmpty, " ENTRY "},
        {"REPEAT", kContainer, " ASX "},
        {"SKIN", kNever, ""},
        {"STARTMARKER", kEmpty, " ENTRY REF "},
        {"STARTTIME", kEmpty, " ENTRY REF "},
        {"TITLE", kText, " ASX ENTRY "},
        {"VIDEO", kNever, ""},
    };
    const struct {
        const char* name;
        const char* before;
        const char* behind;
    } places[] = {
        {"ASX", "<ASX>", "</ASX>"},
        {"ENTRY", "<ASX><ENTRY>", "</ENTRY></ASX>"},
        {"EVENT", "<ASX><EVENT>", "</EVENT></ASX>"},
        {"REPEAT", "<ASX><REPEAT>", "</REPEAT></ASX>"},
        {"REF", "<ASX><ENTRY><REF>", "</REF></ENTRY></ASX>"},
        {"BANNER", "<ASX><BANNER>", "</BANNER></ASX>"},
        {"TITLE", "<ASX><TITLE>", "</TITLE></ASX>"},
    };
    for (const auto& element : elements) {
        const std::string tag = std::string("<") + element.name;
        const std::string end = std::string("</") + element.name + ">";
        const struct {
            std::string text;
            bool isFine;
        } forms[] = {
            {tag + " />", element.form == kEmpty || element.form == kContainerOrEmpty},
            {tag + " A=\"b\"/>", element.form == kEmpty || element.form == kContainerOrEmpty},
            {tag + ">" + end, element.form != kEmpty},
            {tag + "> x " + end, element.form == kText},
            {tag + ">" + std::string("</VIDEO>"), false},
        };
        for (const auto& place : places) {
            const bool belongs = std::string(element.parents).find(' ' + std::string(place.name) + ' ') != std::string::npos;
            for (const auto& form : forms) {
                EXPECT_EQ(Asx(place.before + form.text + place.behind) != kRefused, belongs && form.isFine)
                    << form.text << " in " << place.name;
            }
        }
    }
}

TEST(Asx, ReadsNothingBehindTheEnd) {
    const std::string list =
        "<ASX VERSION = \"3\" > <TITLE>a</TITLE> <ENTRY > <PARAM NAME = \"NAME\" VALUE = \"b\" /> <REF /> </ENTRY > </ASX >";
    TitleFile file;
    ASSERT_EQ(file.ReadAsx(list), 1);
    for (std::size_t length = 0; length < list.size(); ++length) {
        // On the heap, where a sanitizer sees a read too far.
        const std::vector<char> exact(list.begin(), list.begin() + static_cast<std::ptrdiff_t>(length));
        EXPECT_EQ(file.ReadAsx(std::string_view(exact.data(), length)), 0) << list.substr(0, length);
    }
}

TEST(Asx, RefusesWhatIsNoPlayList) {
    for (const char* text :
         {"", " ", "x", "<", "<ASX", "<ASX>", "<ASX></ASX", "<TITLE>x</TITLE>", "\xEF\xBB\xBF<ASX></ASX>",
          "<?xml version=\"1.0\"?><ASX></ASX>", "< ASX></ASX>", "<ASX/>", "<ASX />", "<ASX><ASX></ASX></ASX>"}) {
        EXPECT_EQ(Asx(text), kRefused) << text;
    }
    for (const char* text : {"text", "<!-- comment -->", "<SKIN X=\"1\"/>", "<OTHER></OTHER>", "</ENTRY>", "</OTHER>",
                             "<BASE X=\"1\">", "<TITLE />", "<ENTRY />", "<EVENT />", "<REF/>", "<DURATION X=\"1\"/>"}) {
        EXPECT_EQ(InAsx(text), kRefused) << text;
    }
    for (const char* text :
         {"<REF/>", "<REF><TITLE>x</TITLE></REF>", "<BANNER><TITLE>x</TITLE></BANNER>", "<ENTRY></ENTRY>",
          "<TITLE>x<REF ></TITLE>", "<TITLE>x</AUTHOR></TITLE>", "<TITLE>x", "<TITLE>x</TITLE", "<TITLE <", "<BASE A",
          "<BASE A=", "<BASE A=\"", "<BASE \"x", "<BASE A=\"x\"", "<BASE A=\"x\" /"}) {
        EXPECT_EQ(InEntry(text), kRefused) << text;
        EXPECT_EQ(Asx("<ASX><ENTRY>" + std::string(text)), kRefused) << text << " at the end";
    }
    EXPECT_EQ(InEntry("< TITLE>x</TITLE>"), kRefused);
    EXPECT_EQ(InEntry("<" + std::string(101, 'A') + ">"), kRefused);
    EXPECT_EQ(InEntry("<REF /><TITLE>a</TITLE>"), "1=a|") << "with a blank";
}
