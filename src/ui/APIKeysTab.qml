import QtQuick
import Plenaura

// The keys of the three services.
ScrollColumn {
    id: root

    function loadAllKeys() {
        gemini.key.load();
        grok.key.load();
        openai.key.load();
    }

    // The window has one height, and three empty rows fit into it.
    verticalPadding: 14
    spacing: 10
    onVisibleChanged: if (visible) loadAllKeys()
    Component.onCompleted: loadAllKeys()

    FormSection {
        width: root.width - 2 * root.padding
        header: qsTr("Gemini")
        footer: qsTr("Used for default generation and 4K upscaling.")

        APIKeyRow {
            id: gemini

            label: qsTr("Gemini")
            providerId: "gemini"
        }
    }
    FormSection {
        width: root.width - 2 * root.padding
        header: qsTr("Grok (xAI)")
        footer: qsTr("Used when NSFW is enabled.")

        APIKeyRow {
            id: grok

            label: qsTr("Grok")
            providerId: "grok"
        }
    }
    FormSection {
        width: root.width - 2 * root.padding
        header: qsTr("OpenAI")
        footer: qsTr("Available as an override in Advanced settings.")

        APIKeyRow {
            id: openai

            label: qsTr("OpenAI")
            providerId: "openai"
        }
    }
}
