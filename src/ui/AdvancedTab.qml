import QtQuick
import Plenaura

// The models of the services, and which service is used.
ScrollColumn {
    id: root

    required property AdvancedSettings advanced
    readonly property list<string> overrides: ["auto", "openai"]
    // All alike, and wider only where a language needs it; the titles need their place as well.
    readonly property real pickerWidth: Math.min(Math.max(230, geminiPicker.implicitWidth, grokPicker.implicitWidth, openaiPicker.implicitWidth, providerPicker.implicitWidth), width * 0.55)

    verticalPadding: 14
    spacing: 14
    onVisibleChanged: if (visible) advanced.loadModels()

    FormSection {
        width: root.width - 2 * root.padding
        header: qsTr("Models")

        FormRow {
            first: true
            title: qsTr("Gemini Model")

            Picker {
                id: geminiPicker

                width: root.pickerWidth
                title: qsTr("Gemini Model")
                model: root.advanced.gemini.labels
                currentIndex: root.advanced.gemini.index
                onActivated: index => root.advanced.gemini.index = index
            }
        }
        FormRow {
            title: qsTr("Grok Model")

            Picker {
                id: grokPicker

                width: root.pickerWidth
                title: qsTr("Grok Model")
                model: root.advanced.grok.labels
                currentIndex: root.advanced.grok.index
                onActivated: index => root.advanced.grok.index = index
            }
        }
        FormRow {
            title: qsTr("OpenAI Model")

            Picker {
                id: openaiPicker

                width: root.pickerWidth
                title: qsTr("OpenAI Model")
                model: root.advanced.openai.labels
                currentIndex: root.advanced.openai.index
                onActivated: index => root.advanced.openai.index = index
            }
        }
    }
    FormSection {
        width: root.width - 2 * root.padding
        header: qsTr("Provider Override")
        footer: qsTr("Auto selects Gemini by default, Grok when NSFW is on.\nOpenAI disables NSFW; 4K uses Gemini upscale.")

        FormRow {
            first: true
            title: qsTr("Provider")

            Picker {
                id: providerPicker

                width: root.pickerWidth
                title: qsTr("Provider")
                model: [qsTr("Auto (recommended)"), qsTr("Force OpenAI")]
                currentIndex: root.overrides.indexOf(root.advanced.providerOverride)
                onActivated: index => root.advanced.providerOverride = root.overrides[index]
            }
        }
    }
}
