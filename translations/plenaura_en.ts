<?xml version="1.0" encoding="utf-8"?>
<!DOCTYPE TS>
<TS version="2.1" language="en_US" sourcelanguage="en">
<context>
    <name>APIKeyRow</name>
    <message>
        <source>%1 API Key</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Update</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Save</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Delete %1 API key</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Saved in Keychain</source>
        <translation type="unfinished"></translation>
    </message>
</context>
<context>
    <name>APIKeysTab</name>
    <message>
        <source>Gemini</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Used for default generation and 4K upscaling.</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Grok (xAI)</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Used when NSFW is enabled.</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Grok</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>OpenAI</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Available as an override in Advanced settings.</source>
        <translation type="unfinished"></translation>
    </message>
</context>
<context>
    <name>AdvancedTab</name>
    <message>
        <source>Models</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Gemini Model</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Grok Model</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>OpenAI Model</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Provider Override</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Auto selects Gemini by default, Grok when NSFW is on.
OpenAI disables NSFW; 4K uses Gemini upscale.</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Provider</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Auto (recommended)</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Force OpenAI</source>
        <translation type="unfinished"></translation>
    </message>
</context>
<context>
    <name>EmptyGallery</name>
    <message>
        <source>No wallpapers yet</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Generate your first wallpaper
using the sidebar controls.</source>
        <translation type="unfinished"></translation>
    </message>
</context>
<context>
    <name>GenerateButton</name>
    <message>
        <source>Generating...</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Generate &amp; Set Wallpaper</source>
        <translation type="unfinished"></translation>
    </message>
</context>
<context>
    <name>HistoryTile</name>
    <message>
        <source>Apply</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Delete</source>
        <translation type="unfinished"></translation>
    </message>
</context>
<context>
    <name>Interval</name>
    <message>
        <source>%1 min</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>1 hour</source>
        <translation type="unfinished"></translation>
    </message>
    <message numerus="yes">
        <source>%1 hours</source>
        <translation>
            <numerusform>%1 hour</numerusform>
            <numerusform>%1 hours</numerusform>
        </translation>
    </message>
</context>
<context>
    <name>MissingKeys</name>
    <message>
        <source>Missing %1 API key</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Open Settings (⌘,)</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Gemini (for 4K upscale)</source>
        <translation type="unfinished"></translation>
    </message>
</context>
<context>
    <name>OptionsGroup</name>
    <message>
        <source>Options</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>4K resolution</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>NSFW</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>NSFW unavailable with OpenAI</source>
        <translation type="unfinished"></translation>
    </message>
</context>
<context>
    <name>PreviewOverlay</name>
    <message>
        <source>Close preview</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Set as Wallpaper</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Close</source>
        <translation type="unfinished"></translation>
    </message>
</context>
<context>
    <name>PromptGroup</name>
    <message>
        <source>Prompt</source>
        <translation type="unfinished"></translation>
    </message>
</context>
<context>
    <name>ProviderLine</name>
    <message>
        <source>+ Gemini 4K</source>
        <translation type="unfinished"></translation>
    </message>
</context>
<context>
    <name>ScheduleGroup</name>
    <message>
        <source>Schedule</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Auto-generate</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Every</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Next: %1</source>
        <translation type="unfinished"></translation>
    </message>
</context>
<context>
    <name>SettingsView</name>
    <message>
        <source>API Keys</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Advanced</source>
        <translation type="unfinished"></translation>
    </message>
</context>
<context>
    <name>SettingsWindow</name>
    <message>
        <source>Settings</source>
        <translation type="unfinished"></translation>
    </message>
</context>
<context>
    <name>WindowMenu</name>
    <message>
        <source>Menu</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Settings...</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Quit</source>
        <translation type="unfinished"></translation>
    </message>
</context>
<context>
    <name>ui::MenuBarView</name>
    <message>
        <source>Generate Now</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Auto-Generate</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Open Window</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Settings...</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Quit</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Generating...</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Next: %1</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Idle</source>
        <translation type="unfinished"></translation>
    </message>
</context>
</TS>
