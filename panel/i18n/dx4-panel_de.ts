<?xml version="1.0" encoding="utf-8"?>
<!DOCTYPE TS>
<TS version="2.1" language="de" sourcelanguage="en">
<context>
    <name>dx4::panel::ClosingSheet</name>
    <message>
        <source>Close the panel?</source>
        <translation>Panel schließen?</translation>
    </message>
    <message>
        <source>Stay</source>
        <translation>Bleiben</translation>
    </message>
    <message>
        <source>Stop and close</source>
        <translation>Anhalten und schließen</translation>
    </message>
    <message>
        <source>Hold to close without a stop</source>
        <translation>Halten: ohne Stopp schließen</translation>
    </message>
    <message>
        <source>May be running: %1. Drives are stopped before the panel closes.</source>
        <translation>Läuft vielleicht: %1. Die Antriebe werden angehalten, bevor das Panel schließt.</translation>
    </message>
    <message>
        <source>Stopping. The panel closes when the drives have confirmed.</source>
        <translation>Hält an. Das Panel schließt, wenn die Antriebe bestätigt haben.</translation>
    </message>
    <message>
        <source>Stop not confirmed, may still run: %1. Go and see before you close.</source>
        <translation>Stopp nicht bestätigt, läuft vielleicht noch: %1. Sehen Sie nach, bevor Sie schließen.</translation>
    </message>
</context>
<context>
    <name>dx4::panel::CommandWay</name>
    <message>
        <source>the line is being closed</source>
        <translation>die Leitung wird geschlossen</translation>
    </message>
    <message>
        <source>on its way, no echo yet</source>
        <translation>unterwegs, noch kein Echo</translation>
    </message>
    <message>
        <source>echoed</source>
        <translation>Echo ist da</translation>
    </message>
    <message>
        <source>done, the drive reports it</source>
        <translation>getan, der Antrieb meldet es</translation>
    </message>
    <message>
        <source>echoed, but the drive does not report it</source>
        <translation>Echo ist da, aber der Antrieb meldet es nicht</translation>
    </message>
    <message>
        <source>sent, but not echoed; the drive may have taken it</source>
        <translation>gesendet, aber ohne Echo; der Antrieb hat es vielleicht</translation>
    </message>
    <message>
        <source>refused: %1</source>
        <translation>abgelehnt: %1</translation>
    </message>
</context>
<context>
    <name>dx4::panel::Dial</name>
    <message>
        <source>Set: %1</source>
        <translation>Soll: %1</translation>
    </message>
    <message>
        <source>Set</source>
        <translation>Soll</translation>
    </message>
</context>
<context>
    <name>dx4::panel::DriveList</name>
    <message>
        <source>Up</source>
        <translation>Auf</translation>
    </message>
    <message>
        <source>Down</source>
        <translation>Ab</translation>
    </message>
</context>
<context>
    <name>dx4::panel::DriveView</name>
    <message>
        <source>Hold to start</source>
        <translation>Halten: Start</translation>
    </message>
    <message>
        <source>Hold to reverse</source>
        <translation>Halten: rückwärts</translation>
    </message>
    <message>
        <source>Hold to stop this one</source>
        <translation>Halten: diesen anhalten</translation>
    </message>
    <message>
        <source>Frequency...</source>
        <translation>Frequenz...</translation>
    </message>
    <message>
        <source>Frequency</source>
        <translation>Frequenz</translation>
    </message>
</context>
<context>
    <name>dx4::panel::DrivesPage</name>
    <message>
        <source>Set frequency</source>
        <translation>Frequenz stellen</translation>
    </message>
    <message>
        <source>%1: set frequency</source>
        <translation>%1: Frequenz stellen</translation>
    </message>
</context>
<context>
    <name>dx4::panel::HoldButton</name>
    <message>
        <source>Hold it for 0.8 seconds</source>
        <translation>0,8 Sekunden lang halten</translation>
    </message>
</context>
<context>
    <name>dx4::panel::NumberPad</name>
    <message>
        <source>Delete</source>
        <translation>Löschen</translation>
    </message>
    <message>
        <source>Hold to set</source>
        <translation>Halten: stellen</translation>
    </message>
    <message>
        <source>Cancel</source>
        <translation>Abbrechen</translation>
    </message>
    <message>
        <source>0 to %1 %2</source>
        <translation>0 bis %1 %2</translation>
    </message>
</context>
<context>
    <name>dx4::panel::PanelLine</name>
    <message>
        <source>Station %1</source>
        <translation>Station %1</translation>
    </message>
    <message>
        <source>%1 and %2 more</source>
        <translation>%1 und %2 weitere</translation>
    </message>
    <message>
        <source>Stop not confirmed, may still run!</source>
        <translation>Stopp nicht bestätigt, läuft vielleicht noch!</translation>
    </message>
    <message>
        <source>Start</source>
        <translation>Start</translation>
    </message>
    <message>
        <source>Reverse</source>
        <translation>Rückwärts</translation>
    </message>
    <message>
        <source>Stop</source>
        <translation>Stopp</translation>
    </message>
    <message>
        <source>Frequency</source>
        <translation>Frequenz</translation>
    </message>
    <message>
        <source>Stop: on its way to all drives</source>
        <translation>Stopp: unterwegs zu allen Antrieben</translation>
    </message>
    <message>
        <source>Stop: the line is closed</source>
        <translation>Stopp: die Leitung ist geschlossen</translation>
    </message>
    <message>
        <source>Stop not confirmed: %1. May still run!</source>
        <translation>Stopp nicht bestätigt: %1. Läuft vielleicht noch!</translation>
    </message>
    <message>
        <source>Stop: confirmed by all drives</source>
        <translation>Stopp: von allen Antrieben bestätigt</translation>
    </message>
    <message>
        <source>The line is down: %1</source>
        <translation>Die Leitung ist unterbrochen: %1</translation>
    </message>
</context>
<context>
    <name>dx4::panel::PanelWindow</name>
    <message>
        <source>Drives</source>
        <translation>Antriebe</translation>
    </message>
</context>
<context>
    <name>dx4::panel::Shown</name>
    <message>
        <source>%1 s old</source>
        <translation>%1 s alt</translation>
    </message>
    <message>
        <source>bit %1</source>
        <translation>Bit %1</translation>
    </message>
    <message>
        <source>read failed</source>
        <translation>nicht gelesen</translation>
    </message>
    <message>
        <source>not confirmed</source>
        <translation>nicht bestätigt</translation>
    </message>
</context>
<context>
    <name>dx4::panel::StopButton</name>
    <message>
        <source>Stop</source>
        <translation>Stopp</translation>
    </message>
    <message>
        <source>Stop all drives</source>
        <translation>Alle Antriebe anhalten</translation>
    </message>
</context>
</TS>
