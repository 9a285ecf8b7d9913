import QtQuick
import Tovi

/// Text of a file with words marked in it, as the models give it: `<b>` around the marked ones.
AppText {
    required property string excerpt

    text: excerpt.replace(/<b>/g, "<span style=\"font-weight:600;color:" + Theme.text
        + ";background-color:" + Theme.warningBackground + "\">").replace(/<\/b>/g, "</span>")
    textFormat: excerpt.includes("<b>") ? Text.RichText : Text.StyledText // which is laid out far sooner
    wrapMode: Text.Wrap
    Accessible.name: excerpt.replace(/<br>/g, " ").replace(/<[^>]*>/g, "")
}
