<?xml version="1.0" encoding="utf-8"?>
<!DOCTYPE TS>
<TS version="2.1" language="de" sourcelanguage="en">
<context>
    <name>dx4::panel</name>
    <message>
        <source>Parameters</source>
        <translation>Parameter</translation>
    </message>
</context>
<context>
    <name>dx4::panel::AlarmWords</name>
    <message>
        <source>Station %1</source>
        <translation>Station %1</translation>
    </message>
    <message>
        <source>fault %1</source>
        <translation>Störung %1</translation>
    </message>
    <message>
        <source>%1: %2</source>
        <translation>%1: %2</translation>
    </message>
    <message>
        <source>%1 does not answer</source>
        <translation>%1 antwortet nicht</translation>
    </message>
    <message>
        <source>The line is down: %1</source>
        <translation>Die Leitung ist unterbrochen: %1</translation>
    </message>
    <message>
        <source>A stop was not confirmed. A motor may still run!</source>
        <translation>Ein Stopp wurde nicht bestätigt. Ein Motor kann noch laufen!</translation>
    </message>
    <message>
        <source>The journal cannot be written</source>
        <translation>Das Journal kann nicht geschrieben werden</translation>
    </message>
    <message>
        <source>%1 (fault code %2, station %3)</source>
        <translation>%1 (Störungscode %2, Station %3)</translation>
    </message>
    <message>
        <source>%1 (station %2)</source>
        <translation>%1 (Station %2)</translation>
    </message>
    <message>
        <source>over</source>
        <translation>vorbei</translation>
    </message>
    <message>
        <source>active, not acknowledged</source>
        <translation>aktiv, nicht quittiert</translation>
    </message>
    <message>
        <source>active, acknowledged</source>
        <translation>aktiv, quittiert</translation>
    </message>
    <message>
        <source>over, not acknowledged</source>
        <translation>vorbei, nicht quittiert</translation>
    </message>
    <message>
        <source>message, not acknowledged</source>
        <translation>Meldung, nicht quittiert</translation>
    </message>
    <message>
        <source>came %1 times</source>
        <translation>%1-mal gekommen</translation>
    </message>
    <message>
        <source>went %1</source>
        <translation>gegangen %1</translation>
    </message>
    <message>
        <source>Fault</source>
        <translation>Störung</translation>
    </message>
    <message>
        <source>Write</source>
        <translation>Schreiben</translation>
    </message>
    <message>
        <source>Parameter</source>
        <translation>Parameter</translation>
    </message>
    <message>
        <source>Alarm</source>
        <translation>Alarm</translation>
    </message>
    <message>
        <source>Notice</source>
        <translation>Hinweis</translation>
    </message>
    <message>
        <source>Line</source>
        <translation>Leitung</translation>
    </message>
    <message>
        <source>Station</source>
        <translation>Station</translation>
    </message>
    <message>
        <source>Stop</source>
        <translation>Stopp</translation>
    </message>
    <message>
        <source>Journal</source>
        <translation>Journal</translation>
    </message>
    <message>
        <source>Acknowledged</source>
        <translation>Quittiert</translation>
    </message>
</context>
<context>
    <name>dx4::panel::AlarmsPage</name>
    <message>
        <source>Save the history as a table (CSV)</source>
        <translation>Verlauf als Tabelle speichern (CSV)</translation>
    </message>
    <message>
        <source>Details</source>
        <translation>Einzelheiten</translation>
    </message>
    <message>
        <source>Now</source>
        <translation>Jetzt</translation>
    </message>
    <message>
        <source>History</source>
        <translation>Verlauf</translation>
    </message>
    <message>
        <source>Acknowledge</source>
        <translation>Quittieren</translation>
    </message>
    <message>
        <source>Acknowledge all shown</source>
        <translation>Alle gezeigten quittieren</translation>
    </message>
    <message>
        <source>Filter...</source>
        <translation>Filter...</translation>
    </message>
    <message>
        <source>Save as CSV...</source>
        <translation>Als CSV speichern...</translation>
    </message>
    <message>
        <source>Details...</source>
        <translation>Mehr...</translation>
    </message>
    <message>
        <source>No alarm is active, and all were acknowledged.</source>
        <translation>Kein Alarm ist aktiv, alle sind quittiert.</translation>
    </message>
    <message>
        <source>The journal has no such event.</source>
        <translation>Das Journal hat kein solches Ereignis.</translation>
    </message>
    <message>
        <source>No journal is kept.</source>
        <translation>Es wird kein Journal geführt.</translation>
    </message>
    <message>
        <source>Reading.</source>
        <translation>Wird gelesen.</translation>
    </message>
    <message>
        <source>The journal cannot be read: %1</source>
        <translation>Das Journal kann nicht gelesen werden: %1</translation>
    </message>
    <message>
        <source>all events</source>
        <translation>alle Ereignisse</translation>
    </message>
    <message>
        <source>%1 not acknowledged, %2 active</source>
        <translation>%1 nicht quittiert, %2 aktiv</translation>
    </message>
    <message>
        <source>%1; %2 more are in the history only</source>
        <translation>%1; %2 weitere stehen nur im Verlauf</translation>
    </message>
    <message>
        <source>Newest first: %1</source>
        <translation>Neueste zuerst: %1</translation>
    </message>
</context>
<context>
    <name>dx4::panel::AnswerChart</name>
    <message>
        <source>within %1 ms</source>
        <translation>bis %1 ms</translation>
    </message>
    <message>
        <source>above %1 ms</source>
        <translation>über %1 ms</translation>
    </message>
    <message>
        <source>Turnaround in ms, up to</source>
        <translation>Antwortzeit in ms, bis</translation>
    </message>
    <message>
        <source>%1: no answer was counted</source>
        <translation>%1: keine Antwort gezählt</translation>
    </message>
    <message>
        <source>%1: half %2, 99 % %3, slowest %4</source>
        <translation>%1: Hälfte %2, 99 % %3, längste %4</translation>
    </message>
</context>
<context>
    <name>dx4::panel::ApplySheet</name>
    <message>
        <source>Write parameters</source>
        <translation>Parameter schreiben</translation>
    </message>
    <message>
        <source>Write them all the same</source>
        <translation>Trotzdem schreiben</translation>
    </message>
    <message>
        <source>Hold to write</source>
        <translation>Zum Schreiben halten</translation>
    </message>
    <message>
        <source>Cancel</source>
        <translation>Abbrechen</translation>
    </message>
    <message>
        <source>End it</source>
        <translation>Beenden</translation>
    </message>
    <message>
        <source>Close</source>
        <translation>Schließen</translation>
    </message>
    <message>
        <source>1 register</source>
        <translation>1 Register</translation>
    </message>
    <message>
        <source>%1 registers</source>
        <translation>%1 Register</translation>
    </message>
    <message>
        <source>Write %1 from %2 (station %3)
to %4 (station %5)?</source>
        <translation>%1 von %2 (Station %3)
in %4 (Station %5) schreiben?</translation>
    </message>
    <message>
        <source>The values are those of station %1. Write them to station %2 all the same</source>
        <translation>Die Werte sind die von Station %1. Trotzdem in Station %2 schreiben</translation>
    </message>
    <message>
        <source>Hold to write %1</source>
        <translation>Halten: %1 schreiben</translation>
    </message>
    <message>
        <source>Writing to %1 (station %2).
%3</source>
        <translation>Schreibt in %1 (Station %2).
%3</translation>
    </message>
    <message>
        <source>%1 holds every value.</source>
        <translation>%1 hat alle Werte.</translation>
    </message>
    <message>
        <source>%1 was not seen to hold every value.</source>
        <translation>%1 hat nicht nachweislich alle Werte.</translation>
    </message>
</context>
<context>
    <name>dx4::panel::BannerButton</name>
    <message>
        <source>%1 more</source>
        <translation>%1 weitere</translation>
    </message>
    <message>
        <source>%1 (over)</source>
        <translation>%1 (vorbei)</translation>
    </message>
    <message>
        <source>Alarm, not acknowledged: %1, %2. %3</source>
        <translation>Alarm, nicht quittiert: %1, %2. %3</translation>
    </message>
</context>
<context>
    <name>dx4::panel::CheckedConfig</name>
    <message>
        <source>[stop] has no control_word; the stop button needs the value of CW that stops a drive</source>
        <translation>[stop] hat kein control_word; der Stoppknopf braucht den Wert von CW, der einen Antrieb stoppt</translation>
    </message>
    <message>
        <source>the control_word of [stop] starts drives; write under [control] the run that does</source>
        <translation>das control_word von [stop] startet Antriebe; unter [control] steht das run, das es tut</translation>
    </message>
    <message>
        <source>Line %1:  %2</source>
        <translation>Zeile %1:  %2</translation>
    </message>
    <message>
        <source>It has other stations: start dx4-panel with it</source>
        <translation>Sie hat andere Stationen: dx4-panel damit neu starten</translation>
    </message>
</context>
<context>
    <name>dx4::panel::ChoiceList</name>
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
    <name>dx4::panel::ConnectPage</name>
    <message>
        <source>Ports</source>
        <translation>Anschlüsse</translation>
    </message>
    <message>
        <source>%1, this line</source>
        <translation>%1, diese Leitung</translation>
    </message>
    <message>
        <source>Plan</source>
        <translation>Plan</translation>
    </message>
    <message>
        <source>Configuration</source>
        <translation>Konfiguration</translation>
    </message>
    <message>
        <source>Up</source>
        <translation>Auf</translation>
    </message>
    <message>
        <source>Down</source>
        <translation>Ab</translation>
    </message>
    <message>
        <source>Open another...</source>
        <translation>Andere öffnen...</translation>
    </message>
    <message>
        <source>Take over</source>
        <translation>Übernehmen</translation>
    </message>
    <message>
        <source>Ports are looked for</source>
        <translation>Anschlüsse werden gesucht</translation>
    </message>
    <message>
        <source>This machine has no serial port</source>
        <translation>Dieser Rechner hat keinen seriellen Anschluss</translation>
    </message>
    <message>
        <source>Ports of this machine, and who holds them</source>
        <translation>Anschlüsse dieses Rechners und wer sie hält</translation>
    </message>
</context>
<context>
    <name>dx4::panel::ConnectView</name>
    <message>
        <source>Port</source>
        <translation>Anschluss</translation>
    </message>
    <message>
        <source>Lasting name</source>
        <translation>Bleibender Name</translation>
    </message>
    <message>
        <source>Held by</source>
        <translation>Gehalten von</translation>
    </message>
    <message>
        <source>Station</source>
        <translation>Station</translation>
    </message>
    <message>
        <source>Registers</source>
        <translation>Register</translation>
    </message>
    <message>
        <source>Count</source>
        <translation>Anzahl</translation>
    </message>
    <message>
        <source>Wire ms</source>
        <translation>Leitung ms</translation>
    </message>
    <message>
        <source>%1, this line</source>
        <translation>%1, diese Leitung</translation>
    </message>
    <message>
        <source>nobody seen</source>
        <translation>niemand</translation>
    </message>
    <message>
        <source>%1 registers in %2 blocks; one round takes %3 ms when stations answer within %4 ms</source>
        <translation>%1 Register in %2 Blöcken; eine Runde dauert %3 ms, wenn Stationen in %4 ms antworten</translation>
    </message>
    <message>
        <source>%1 runs</source>
        <translation>%1 läuft</translation>
    </message>
    <message>
        <source>%1 is read</source>
        <translation>%1 wird gelesen</translation>
    </message>
    <message>
        <source>%1 has errors; %2 goes on</source>
        <translation>%1 hat Fehler; %2 läuft weiter</translation>
    </message>
    <message>
        <source>%1 is whole and can be taken over; %2 runs</source>
        <translation>%1 ist in Ordnung und kann übernommen werden; %2 läuft</translation>
    </message>
    <message>
        <source>%1 is whole. %2; %3 goes on</source>
        <translation>%1 ist in Ordnung. %2; %3 läuft weiter</translation>
    </message>
    <message>
        <source>%1 is taken over</source>
        <translation>%1 wird übernommen</translation>
    </message>
    <message>
        <source>The line has not taken %1 over; %2 goes on</source>
        <translation>Die Leitung hat %1 nicht übernommen; %2 läuft weiter</translation>
    </message>
    <message>
        <source>%1 runs, but for %2: these take effect with a new start of dx4-panel</source>
        <translation>%1 läuft, bis auf %2: das gilt erst nach einem neuen Start von dx4-panel</translation>
    </message>
    <message>
        <source>Station %1  %2</source>
        <translation>Station %1  %2</translation>
    </message>
</context>
<context>
    <name>dx4::panel::CountsModel</name>
    <message>
        <source>Station</source>
        <translation>Station</translation>
    </message>
    <message>
        <source>Sent</source>
        <translation>Gesendet</translation>
    </message>
    <message>
        <source>Good</source>
        <translation>Gut</translation>
    </message>
    <message>
        <source>Silence</source>
        <translation>Stille</translation>
    </message>
    <message>
        <source>Truncated</source>
        <translation>Gekürzt</translation>
    </message>
    <message>
        <source>Wrong
CRC</source>
        <translation>CRC
falsch</translation>
    </message>
    <message>
        <source>Other
station</source>
        <translation>Andere
Station</translation>
    </message>
    <message>
        <source>Wrong
reply</source>
        <translation>Falsche
Antwort</translation>
    </message>
    <message>
        <source>Excep-
tions</source>
        <translation>Ableh-
nungen</translation>
    </message>
    <message>
        <source>Retries</source>
        <translation>Erneut</translation>
    </message>
    <message>
        <source>Given
up</source>
        <translation>Aufge-
geben</translation>
    </message>
    <message>
        <source>Not
asked</source>
        <translation>Nicht
gefragt</translation>
    </message>
    <message>
        <source>write</source>
        <translation>schreiben</translation>
    </message>
    <message>
        <source>read</source>
        <translation>lesen</translation>
    </message>
</context>
<context>
    <name>dx4::panel::DetailSheet</name>
    <message>
        <source>%1   %2 to %3, %4</source>
        <translation>%1   %2 auf %3, %4</translation>
    </message>
    <message>
        <source>One parameter</source>
        <translation>Ein Parameter</translation>
    </message>
    <message>
        <source>Close</source>
        <translation>Schließen</translation>
    </message>
    <message>
        <source>%1 (%2): %3</source>
        <translation>%1 (%2): %3</translation>
    </message>
    <message>
        <source>%1 (%2)</source>
        <translation>%1 (%2)</translation>
    </message>
    <message>
        <source>refused, the station does not have it</source>
        <translation>abgelehnt, die Station hat ihn nicht</translation>
    </message>
    <message>
        <source>Reading the journal...</source>
        <translation>Das Journal wird gelesen...</translation>
    </message>
    <message>
        <source>No journal is kept of what was written.</source>
        <translation>Was geschrieben wurde, steht in keinem Journal.</translation>
    </message>
    <message>
        <source>%1: written %2 times. Its memory wears with each.</source>
        <translation>%1: %2-mal geschrieben. Jedes Mal nutzt den Speicher ab.</translation>
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
    <name>dx4::panel::EventSaveSheet</name>
    <message>
        <source>Cancel</source>
        <translation>Abbrechen</translation>
    </message>
    <message>
        <source>Save</source>
        <translation>Speichern</translation>
    </message>
    <message>
        <source>File</source>
        <translation>Datei</translation>
    </message>
    <message>
        <source>Saving.</source>
        <translation>Wird gespeichert.</translation>
    </message>
    <message>
        <source>Saved as %1</source>
        <translation>Gespeichert als %1</translation>
    </message>
    <message>
        <source>%1 is there already. Replace it, or choose another name.</source>
        <translation>%1 gibt es schon. Ersetzen, oder einen anderen Namen wählen.</translation>
    </message>
    <message>
        <source>Not saved: %1</source>
        <translation>Nicht gespeichert: %1</translation>
    </message>
    <message>
        <source>Replace the file</source>
        <translation>Datei ersetzen</translation>
    </message>
    <message>
        <source>Close</source>
        <translation>Schließen</translation>
    </message>
</context>
<context>
    <name>dx4::panel::FileSheet</name>
    <message>
        <source>Open a configuration</source>
        <translation>Eine Konfiguration öffnen</translation>
    </message>
    <message>
        <source>File</source>
        <translation>Datei</translation>
    </message>
    <message>
        <source>Cancel</source>
        <translation>Abbrechen</translation>
    </message>
    <message>
        <source>Open this path</source>
        <translation>Diesen Pfad öffnen</translation>
    </message>
</context>
<context>
    <name>dx4::panel::FilterSheet</name>
    <message>
        <source>Faults</source>
        <translation>Störungen</translation>
    </message>
    <message>
        <source>Line</source>
        <translation>Leitung</translation>
    </message>
    <message>
        <source>Stops</source>
        <translation>Stopps</translation>
    </message>
    <message>
        <source>Writes</source>
        <translation>Schreiben</translation>
    </message>
    <message>
        <source>Messages</source>
        <translation>Meldungen</translation>
    </message>
    <message>
        <source>Acknowledged</source>
        <translation>Quittiert</translation>
    </message>
    <message>
        <source>Any time</source>
        <translation>Jederzeit</translation>
    </message>
    <message>
        <source>Last hour</source>
        <translation>Letzte Stunde</translation>
    </message>
    <message>
        <source>Last 24 h</source>
        <translation>Letzte 24 h</translation>
    </message>
    <message>
        <source>Last 7 days</source>
        <translation>Letzte 7 Tage</translation>
    </message>
    <message>
        <source>Show in the history</source>
        <translation>Im Verlauf zeigen</translation>
    </message>
    <message>
        <source>Previous</source>
        <translation>Vorige</translation>
    </message>
    <message>
        <source>Next</source>
        <translation>Nächste</translation>
    </message>
    <message>
        <source>Text in the event</source>
        <translation>Text im Ereignis</translation>
    </message>
    <message>
        <source>Show all</source>
        <translation>Alle zeigen</translation>
    </message>
    <message>
        <source>Cancel</source>
        <translation>Abbrechen</translation>
    </message>
    <message>
        <source>Show these</source>
        <translation>Diese zeigen</translation>
    </message>
    <message>
        <source>All drives</source>
        <translation>Alle Antriebe</translation>
    </message>
    <message>
        <source>&quot;%1&quot;</source>
        <translation>„%1“</translation>
    </message>
</context>
<context>
    <name>dx4::panel::FrameLog</name>
    <message>
        <source>station %1, %2</source>
        <translation>Station %1, %2</translation>
    </message>
    <message>
        <source>%1, belongs to no request</source>
        <translation>%1, gehört zu keiner Anfrage</translation>
    </message>
</context>
<context>
    <name>dx4::panel::FrameModel</name>
    <message>
        <source>%1 ms</source>
        <translation>%1 ms</translation>
    </message>
    <message>
        <source>Time</source>
        <translation>Zeit</translation>
    </message>
    <message>
        <source>Frame</source>
        <translation>Telegramm</translation>
    </message>
    <message>
        <source>Turnaround</source>
        <translation>Antwortzeit</translation>
    </message>
</context>
<context>
    <name>dx4::panel::GroupBar</name>
    <message>
        <source>All</source>
        <translation>Alle</translation>
    </message>
</context>
<context>
    <name>dx4::panel::HistoryModel</name>
    <message>
        <source>%1, %2</source>
        <translation>%1, %2</translation>
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
    <name>dx4::panel::JournalDesk</name>
    <message>
        <source>No journal is kept.</source>
        <translation>Es wird kein Journal geführt.</translation>
    </message>
</context>
<context>
    <name>dx4::panel::LinePage</name>
    <message>
        <source>Counters</source>
        <translation>Zähler</translation>
    </message>
    <message>
        <source>Frames</source>
        <translation>Telegramme</translation>
    </message>
    <message>
        <source>Answers</source>
        <translation>Antworten</translation>
    </message>
    <message>
        <source>Last minute</source>
        <translation>Letzte Minute</translation>
    </message>
    <message>
        <source>Blocks</source>
        <translation>Blöcke</translation>
    </message>
    <message>
        <source>Only errors</source>
        <translation>Nur Fehler</translation>
    </message>
    <message>
        <source>Pause</source>
        <translation>Pause</translation>
    </message>
    <message>
        <source>Up</source>
        <translation>Auf</translation>
    </message>
    <message>
        <source>Down</source>
        <translation>Ab</translation>
    </message>
    <message>
        <source>All stations</source>
        <translation>Alle Stationen</translation>
    </message>
    <message>
        <source>Station %1</source>
        <translation>Station %1</translation>
    </message>
    <message>
        <source>End recording</source>
        <translation>Aufnahme beenden</translation>
    </message>
    <message>
        <source>Record...</source>
        <translation>Aufnehmen...</translation>
    </message>
    <message>
        <source>No error was seen so far</source>
        <translation>Bisher kein Fehler</translation>
    </message>
    <message>
        <source>No frame was seen so far</source>
        <translation>Bisher kein Telegramm</translation>
    </message>
</context>
<context>
    <name>dx4::panel::LinePager</name>
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
    <name>dx4::panel::LineVerdict</name>
    <message>
        <source>wrong CRC</source>
        <translation>falsche CRC</translation>
    </message>
    <message>
        <source>look at its stub</source>
        <translation>Stichleitung ansehen</translation>
    </message>
    <message>
        <source>look at the shield and at the resistors at both ends</source>
        <translation>Schirm und Widerstände an beiden Enden ansehen</translation>
    </message>
    <message>
        <source>truncated</source>
        <translation>gekürzt</translation>
    </message>
    <message>
        <source>look at its plug and its stub</source>
        <translation>Stecker und Stichleitung ansehen</translation>
    </message>
    <message>
        <source>look at the adapter and its cable</source>
        <translation>Adapter und sein Kabel ansehen</translation>
    </message>
    <message>
        <source>answered by another station</source>
        <translation>von anderer Station beantwortet</translation>
    </message>
    <message>
        <source>look for a second master, or an address twice</source>
        <translation>zweiten Master oder doppelte Adresse suchen</translation>
    </message>
    <message>
        <source>look for a second master on the line</source>
        <translation>zweiten Master an der Leitung suchen</translation>
    </message>
    <message>
        <source>wrong reply</source>
        <translation>falsche Antwort</translation>
    </message>
    <message>
        <source>look whether its address is there twice</source>
        <translation>nachsehen, ob es die Adresse doppelt gibt</translation>
    </message>
    <message>
        <source>silence</source>
        <translation>Stille</translation>
    </message>
    <message>
        <source>look at its plug, or give it a longer response_timeout</source>
        <translation>Stecker ansehen, oder response_timeout verlängern</translation>
    </message>
    <message>
        <source>look at the cable, or set a longer response_timeout</source>
        <translation>Kabel ansehen, oder response_timeout verlängern</translation>
    </message>
    <message>
        <source>refused</source>
        <translation>abgelehnt</translation>
    </message>
    <message>
        <source>look at its registers in the configuration</source>
        <translation>seine Register in der Konfiguration ansehen</translation>
    </message>
    <message>
        <source>look at the registers in the configuration</source>
        <translation>die Register in der Konfiguration ansehen</translation>
    </message>
    <message>
        <source>Station %1</source>
        <translation>Station %1</translation>
    </message>
    <message>
        <source>%1 and %2 more</source>
        <translation>%1 und %2 weitere</translation>
    </message>
    <message>
        <source>Stations %1</source>
        <translation>Stationen %1</translation>
    </message>
    <message>
        <source>The line is closed: %1</source>
        <translation>Die Leitung ist geschlossen: %1</translation>
    </message>
    <message>
        <source>Nothing was asked yet</source>
        <translation>Noch nichts gefragt</translation>
    </message>
    <message>
        <source>Bytes come, but no whole frame: look at speed and parity</source>
        <translation>Es kommen Bytes, aber kein ganzes Telegramm: Geschwindigkeit und Parität ansehen</translation>
    </message>
    <message>
        <source>%1 does not answer, others do: look at its supply, plug and address</source>
        <translation>%1 antwortet nicht, andere schon: Versorgung, Stecker und Adresse ansehen</translation>
    </message>
    <message>
        <source>%1 do not answer, others do: look at supply, plugs and addresses</source>
        <translation>%1 antworten nicht, andere schon: Versorgung, Stecker und Adressen ansehen</translation>
    </message>
    <message>
        <source>%1 does not answer: look at its supply and address, at speed and parity, and whether A and B are swapped</source>
        <translation>%1 antwortet nicht: Versorgung, Adresse, Geschwindigkeit und Parität ansehen, und ob A und B vertauscht sind</translation>
    </message>
    <message>
        <source>No station answers: look at the plug of the adapter, at speed and parity, and whether A and B are swapped</source>
        <translation>Keine Station antwortet: Stecker des Adapters, Geschwindigkeit und Parität ansehen, und ob A und B vertauscht sind</translation>
    </message>
    <message>
        <source>others less</source>
        <translation>andere weniger</translation>
    </message>
    <message>
        <source>all others clean</source>
        <translation>alle anderen fehlerfrei</translation>
    </message>
    <message>
        <source>%1: %2 %3: %4</source>
        <translation>%1: %2 %3: %4</translation>
    </message>
    <message>
        <source>All stations: up to %1 %2: %3</source>
        <translation>Alle Stationen: bis zu %1 %2: %3</translation>
    </message>
    <message>
        <source>%1: %2 %3, %4: %5</source>
        <translation>%1: %2 %3, %4: %5</translation>
    </message>
    <message>
        <source>%1: up to %2 %3, %4: look at the cable between them</source>
        <translation>%1: bis zu %2 %3, %4: Kabel dazwischen ansehen</translation>
    </message>
    <message>
        <source>%1 answers late: set a longer response_timeout</source>
        <translation>%1 antwortet spät: response_timeout verlängern</translation>
    </message>
    <message>
        <source>%1 answer late: set a longer response_timeout</source>
        <translation>%1 antworten spät: response_timeout verlängern</translation>
    </message>
    <message>
        <source>%1 bytes of noise between the frames: look at the bias resistors</source>
        <translation>%1 Störbytes zwischen den Telegrammen: Vorspannungswiderstände ansehen</translation>
    </message>
    <message>
        <source>All is well: %1 requests without a failure</source>
        <translation>Alles in Ordnung: %1 Anfragen ohne Fehler</translation>
    </message>
    <message>
        <source>All is well: %1 of %2 requests failed and were sent again</source>
        <translation>Alles in Ordnung: %1 von %2 Anfragen schlugen fehl und wurden wiederholt</translation>
    </message>
</context>
<context>
    <name>dx4::panel::LineView</name>
    <message>
        <source>All</source>
        <translation>Alle</translation>
    </message>
    <message>
        <source>Nothing was heard of the line for %1 s</source>
        <translation>Seit %1 s nichts von der Leitung gehört</translation>
    </message>
    <message>
        <source>Line held %1 of the time</source>
        <translation>Leitung zu %1 belegt</translation>
    </message>
    <message>
        <source>last %1 s</source>
        <translation>letzte %1 s</translation>
    </message>
    <message>
        <source>since the start</source>
        <translation>seit dem Start</translation>
    </message>
    <message>
        <source>, broke %1 times</source>
        <translation>, %1-mal unterbrochen</translation>
    </message>
    <message>
        <source>Recording: %1 frames in %2</source>
        <translation>Aufnahme: %1 Telegramme in %2</translation>
    </message>
    <message>
        <source>Recording: %1 frames in %2; the disk was too slow for %3</source>
        <translation>Aufnahme: %1 Telegramme in %2; für %3 war der Datenträger zu langsam</translation>
    </message>
    <message>
        <source>The last frames go to %1</source>
        <translation>Die letzten Telegramme gehen nach %1</translation>
    </message>
    <message>
        <source>Recorded: %1 frames in %2</source>
        <translation>Aufgenommen: %1 Telegramme in %2</translation>
    </message>
    <message>
        <source>Recording failed after %1 frames: %2</source>
        <translation>Aufnahme nach %1 Telegrammen gescheitert: %2</translation>
    </message>
</context>
<context>
    <name>dx4::panel::NoteSheet</name>
    <message>
        <source>That did not work</source>
        <translation>Das ging nicht</translation>
    </message>
    <message>
        <source>Close</source>
        <translation>Schließen</translation>
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
    <message>
        <source>Alarms</source>
        <translation>Alarme</translation>
    </message>
    <message>
        <source>Trend</source>
        <translation>Trend</translation>
    </message>
    <message>
        <source>Line</source>
        <translation>Leitung</translation>
    </message>
    <message>
        <source>Connect</source>
        <translation>Verbinden</translation>
    </message>
</context>
<context>
    <name>dx4::panel::ParameterBook</name>
    <message>
        <source>Station %1</source>
        <translation>Station %1</translation>
    </message>
    <message>
        <source>%1 cannot be read: the line is closed.</source>
        <translation>%1 kann nicht gelesen werden: Die Leitung ist geschlossen.</translation>
    </message>
    <message>
        <source>%1 was not read to its end: %2</source>
        <translation>%1 wurde nicht zu Ende gelesen: %2</translation>
    </message>
    <message>
        <source>%1 differ, %2 equal, %3 only left, %4 only right, %5 not read</source>
        <translation>%1 anders, %2 gleich, %3 nur links, %4 nur rechts, %5 ungelesen</translation>
    </message>
    <message>
        <source>%1 read, %2 refused, %3 not read</source>
        <translation>%1 gelesen, %2 abgelehnt, %3 nicht gelesen</translation>
    </message>
</context>
<context>
    <name>dx4::panel::ParameterFiles</name>
    <message>
        <source>%1 cannot be read.</source>
        <translation>%1 kann nicht gelesen werden.</translation>
    </message>
    <message>
        <source>Not saved. The file holds something else: %1</source>
        <translation>Nicht gespeichert. In der Datei steht etwas anderes: %1</translation>
    </message>
    <message>
        <source>%1 holds the parameters of station %2. They would be replaced by those of station %3.</source>
        <translation>In %1 stehen die Parameter von Station %2. Sie würden durch die von Station %3 ersetzt.</translation>
    </message>
    <message>
        <source>Not saved. %1 stays as it was, a complete set; what was read is not complete.</source>
        <translation>Nicht gespeichert. %1 bleibt, wie es war, ein ganzer Satz; gelesen ist nicht alles.</translation>
    </message>
    <message>
        <source>Not saved. %1</source>
        <translation>Nicht gespeichert. %1</translation>
    </message>
    <message>
        <source>%1 parameters in %2</source>
        <translation>%1 Parameter in %2</translation>
    </message>
</context>
<context>
    <name>dx4::panel::ParameterRestore</name>
    <message>
        <source>%1: %2 to %3</source>
        <translation>%1: %2 auf %3</translation>
    </message>
    <message>
        <source>A restore is under way.</source>
        <translation>Es wird gerade geschrieben.</translation>
    </message>
    <message>
        <source>No row is ticked.</source>
        <translation>Keine Zeile ist angekreuzt.</translation>
    </message>
    <message>
        <source>The motor of %1 runs, or may run. Stop it first.</source>
        <translation>Der Motor von %1 läuft oder kann laufen. Erst stoppen.</translation>
    </message>
    <message>
        <source>Nothing says that the motor of %1 stands: its status word is not read, or old.</source>
        <translation>Nichts sagt, dass der Motor von %1 steht: Sein Statuswort wird nicht gelesen oder ist alt.</translation>
    </message>
    <message>
        <source>Nothing was written: the line is closed.</source>
        <translation>Nichts wurde geschrieben: Die Leitung ist geschlossen.</translation>
    </message>
    <message>
        <source>It was ended here.</source>
        <translation>Es wurde hier beendet.</translation>
    </message>
    <message>
        <source>It was ended because the motor was started.</source>
        <translation>Es wurde beendet, weil der Motor gestartet wurde.</translation>
    </message>
    <message>
        <source>It waits for its turn.</source>
        <translation>Es wartet, bis es an der Reihe ist.</translation>
    </message>
    <message>
        <source>%1 of %2 registers read</source>
        <translation>%1 von %2 Registern gelesen</translation>
    </message>
    <message>
        <source>%1 compared, %2 written, %3 verified</source>
        <translation>%1 verglichen, %2 geschrieben, %3 geprüft</translation>
    </message>
    <message>
        <source>%1 refused, %2 still different, %3 not looked at</source>
        <translation>%1 abgelehnt, %2 noch anders, %3 nicht angesehen</translation>
    </message>
    <message>
        <source>It broke off: %1</source>
        <translation>Es brach ab: %1</translation>
    </message>
    <message>
        <source>still different, wanted | held: %1</source>
        <translation>noch anders, gewollt | gelesen: %1</translation>
    </message>
</context>
<context>
    <name>dx4::panel::ParameterSide</name>
    <message>
        <source>tap to choose</source>
        <translation>antippen und wählen</translation>
    </message>
    <message>
        <source>reading %1 of %2</source>
        <translation>liest %1 von %2</translation>
    </message>
    <message>
        <source>waiting to be read</source>
        <translation>wartet auf das Lesen</translation>
    </message>
    <message>
        <source>file of station %1</source>
        <translation>Datei von Station %1</translation>
    </message>
    <message>
        <source>station %1, not complete</source>
        <translation>Station %1, nicht ganz</translation>
    </message>
    <message>
        <source>not read</source>
        <translation>nicht gelesen</translation>
    </message>
    <message>
        <source>%1 read, %2 ago</source>
        <translation>%1 gelesen, vor %2</translation>
    </message>
    <message>
        <source>read %1 ago, saved</source>
        <translation>gelesen vor %1, gespeichert</translation>
    </message>
    <message>
        <source>read %1 ago, not saved</source>
        <translation>gelesen vor %1, ungespeichert</translation>
    </message>
    <message>
        <source>%1 s</source>
        <translation>%1 s</translation>
    </message>
    <message>
        <source>%1 min</source>
        <translation>%1 min</translation>
    </message>
    <message>
        <source>%1 h</source>
        <translation>%1 h</translation>
    </message>
</context>
<context>
    <name>dx4::panel::ParameterTable</name>
    <message>
        <source>Value</source>
        <translation>Wert</translation>
    </message>
    <message>
        <source>Left, file</source>
        <translation>Links, Datei</translation>
    </message>
    <message>
        <source>Left, drive</source>
        <translation>Links, Antrieb</translation>
    </message>
    <message>
        <source>Right, file</source>
        <translation>Rechts, Datei</translation>
    </message>
    <message>
        <source>Right, drive</source>
        <translation>Rechts, Antrieb</translation>
    </message>
    <message>
        <source>refused</source>
        <translation>abgelehnt</translation>
    </message>
    <message>
        <source>equal</source>
        <translation>gleich</translation>
    </message>
    <message>
        <source>to write</source>
        <translation>zu schreiben</translation>
    </message>
    <message>
        <source>differs</source>
        <translation>anders</translation>
    </message>
    <message>
        <source>only left</source>
        <translation>nur links</translation>
    </message>
    <message>
        <source>only right</source>
        <translation>nur rechts</translation>
    </message>
    <message>
        <source>not read</source>
        <translation>nicht gelesen</translation>
    </message>
    <message>
        <source>F</source>
        <translation>F</translation>
    </message>
    <message>
        <source>Name</source>
        <translation>Name</translation>
    </message>
    <message>
        <source>State</source>
        <translation>Zustand</translation>
    </message>
    <message>
        <source>Written</source>
        <translation>Geschr.</translation>
    </message>
</context>
<context>
    <name>dx4::panel::ParametersPage</name>
    <message>
        <source>Read</source>
        <translation>Lesen</translation>
    </message>
    <message>
        <source>Save...</source>
        <translation>Speichern...</translation>
    </message>
    <message>
        <source>Apply...</source>
        <translation>Schreiben...</translation>
    </message>
    <message>
        <source>Only what differs</source>
        <translation>Nur was anders ist</translation>
    </message>
    <message>
        <source>Tick all</source>
        <translation>Alle ankreuzen</translation>
    </message>
    <message>
        <source>Find...</source>
        <translation>Suchen...</translation>
    </message>
    <message>
        <source>Up</source>
        <translation>Auf</translation>
    </message>
    <message>
        <source>Down</source>
        <translation>Ab</translation>
    </message>
    <message>
        <source>Left: nothing</source>
        <translation>Links: nichts</translation>
    </message>
    <message>
        <source>Right: nothing</source>
        <translation>Rechts: nichts</translation>
    </message>
    <message>
        <source>Cancel</source>
        <translation>Abbrechen</translation>
    </message>
    <message>
        <source>Writing...</source>
        <translation>Schreibt...</translation>
    </message>
    <message>
        <source>Apply %1...</source>
        <translation>%1 schreiben...</translation>
    </message>
    <message>
        <source>Untick all</source>
        <translation>Keine ankreuzen</translation>
    </message>
    <message>
        <source>Find: %1</source>
        <translation>Suche: %1</translation>
    </message>
    <message>
        <source>No parameter has &quot;%1&quot; in its number or name.</source>
        <translation>Kein Parameter hat „%1“ in Nummer oder Namen.</translation>
    </message>
    <message>
        <source>Not read yet. Tap &quot;Read&quot; to compare.</source>
        <translation>Noch nicht gelesen. „Lesen“ antippen, um zu vergleichen.</translation>
    </message>
    <message>
        <source>Nothing of what was read differs. %1 were not read.</source>
        <translation>Nichts Gelesenes ist anders. %1 wurden nicht gelesen.</translation>
    </message>
    <message>
        <source>Nothing differs here.</source>
        <translation>Hier ist nichts anders.</translation>
    </message>
</context>
<context>
    <name>dx4::panel::PastFile</name>
    <message>
        <source>&quot;%1&quot; is missing or is not what it should be</source>
        <translation>„%1“ fehlt oder ist nicht, was es sein sollte</translation>
    </message>
    <message>
        <source>it is no JSON: %1</source>
        <translation>es ist kein JSON: %1</translation>
    </message>
    <message>
        <source>it is no snapshot of a fault</source>
        <translation>es ist keine Momentaufnahme einer Störung</translation>
    </message>
    <message>
        <source>it is of version %1; this program knows version 1</source>
        <translation>es ist von Version %1; dieses Programm kennt Version 1</translation>
    </message>
    <message>
        <source>%1: it is too large for a snapshot of a fault</source>
        <translation>%1: zu groß für eine Momentaufnahme einer Störung</translation>
    </message>
</context>
<context>
    <name>dx4::panel::PastKeeper</name>
    <message>
        <source>%1: the folder cannot be made</source>
        <translation>%1: Der Ordner kann nicht angelegt werden</translation>
    </message>
    <message>
        <source>Values around it: dx4-panel --open %1</source>
        <translation>Werte drumherum: dx4-panel --open %1</translation>
    </message>
    <message>
        <source>The values around it could not be kept: %1</source>
        <translation>Die Werte drumherum konnten nicht aufbewahrt werden: %1</translation>
    </message>
</context>
<context>
    <name>dx4::panel::PastWindow</name>
    <message>
        <source>-5 s</source>
        <translation>-5 s</translation>
    </message>
    <message>
        <source>-0.5 s</source>
        <translation>-0,5 s</translation>
    </message>
    <message>
        <source>+0.5 s</source>
        <translation>+0,5 s</translation>
    </message>
    <message>
        <source>+5 s</source>
        <translation>+5 s</translation>
    </message>
    <message>
        <source>request</source>
        <translation>Anfrage</translation>
    </message>
    <message>
        <source>reply</source>
        <translation>Antwort</translation>
    </message>
    <message>
        <source>Past: %1</source>
        <translation>Vergangenes: %1</translation>
    </message>
    <message>
        <source>The frames of this time were not kept.</source>
        <translation>Die Telegramme dieser Zeit wurden nicht aufbewahrt.</translation>
    </message>
    <message>
        <source>No parameter was written since the panel was started.</source>
        <translation>Seit dem Start des Panels wurde kein Parameter geschrieben.</translation>
    </message>
    <message>
        <source>No journal told which parameters were written.</source>
        <translation>Kein Journal sagte, welche Parameter geschrieben wurden.</translation>
    </message>
    <message>
        <source>fault %1</source>
        <translation>Störung %1</translation>
    </message>
    <message>
        <source>%1: %2, %3</source>
        <translation>%1: %2, %3</translation>
    </message>
    <message>
        <source>PAST</source>
        <translation>VERGANGEN</translation>
    </message>
    <message>
        <source>At the fault</source>
        <translation>Zur Störung</translation>
    </message>
    <message>
        <source>Drives</source>
        <translation>Antriebe</translation>
    </message>
    <message>
        <source>Frames</source>
        <translation>Telegramme</translation>
    </message>
    <message>
        <source>Parameters written</source>
        <translation>Parameter geschrieben</translation>
    </message>
    <message>
        <source>at the fault</source>
        <translation>bei der Störung</translation>
    </message>
    <message>
        <source>%1 s before the fault</source>
        <translation>%1 s vor der Störung</translation>
    </message>
    <message>
        <source>%1 s after the fault</source>
        <translation>%1 s nach der Störung</translation>
    </message>
    <message>
        <source>%1, %2</source>
        <translation>%1, %2</translation>
    </message>
    <message>
        <source>%1, %2. %3</source>
        <translation>%1, %2. %3</translation>
    </message>
</context>
<context>
    <name>dx4::panel::RecordSheet</name>
    <message>
        <source>Home</source>
        <translation>Persönlicher Ordner</translation>
    </message>
    <message>
        <source>Record frames to a file</source>
        <translation>Telegramme aufnehmen</translation>
    </message>
    <message>
        <source>Record</source>
        <translation>Aufnehmen</translation>
    </message>
    <message>
        <source>Cancel</source>
        <translation>Abbrechen</translation>
    </message>
    <message>
        <source>File</source>
        <translation>Datei</translation>
    </message>
    <message>
        <source>This file is there already. Name another one, or replace it: what it holds is lost.</source>
        <translation>Diese Datei gibt es schon. Eine andere nennen oder ersetzen: Was sie enthält, geht verloren.</translation>
    </message>
    <message>
        <source>The file opens in protocol analysers, and here again.</source>
        <translation>Die Datei öffnet sich in Protokollanalysatoren und hier.</translation>
    </message>
    <message>
        <source>Replace it and record</source>
        <translation>Ersetzen und aufnehmen</translation>
    </message>
</context>
<context>
    <name>dx4::panel::RowList</name>
    <message>
        <source>Up</source>
        <translation>Auf</translation>
    </message>
    <message>
        <source>Down</source>
        <translation>Ab</translation>
    </message>
    <message>
        <source>%1-%2
of %3</source>
        <translation>%1-%2
von %3</translation>
    </message>
    <message>
        <source>%1+</source>
        <translation>%1+</translation>
    </message>
</context>
<context>
    <name>dx4::panel::SaveSheet</name>
    <message>
        <source>Save parameters to a file</source>
        <translation>Parameter in einer Datei speichern</translation>
    </message>
    <message>
        <source>Save</source>
        <translation>Speichern</translation>
    </message>
    <message>
        <source>Cancel</source>
        <translation>Abbrechen</translation>
    </message>
    <message>
        <source>Name of the file</source>
        <translation>Name der Datei</translation>
    </message>
    <message>
        <source>%1 parameters of %2, station %3</source>
        <translation>%1 Parameter von %2, Station %3</translation>
    </message>
    <message>
        <source>%1, read %2 ago.</source>
        <translation>%1, gelesen vor %2.</translation>
    </message>
    <message>
        <source>%1. The reading is not complete, and the file will say so.</source>
        <translation>%1. Gelesen ist nicht alles, und die Datei wird es sagen.</translation>
    </message>
    <message>
        <source>in %1</source>
        <translation>in %1</translation>
    </message>
    <message>
        <source>Replace it</source>
        <translation>Ersetzen</translation>
    </message>
    <message>
        <source>Close</source>
        <translation>Schließen</translation>
    </message>
</context>
<context>
    <name>dx4::panel::SearchSheet</name>
    <message>
        <source>Find a parameter</source>
        <translation>Parameter suchen</translation>
    </message>
    <message>
        <source>8.2 or a name</source>
        <translation>8.2 oder ein Name</translation>
    </message>
    <message>
        <source>Number or name</source>
        <translation>Nummer oder Name</translation>
    </message>
    <message>
        <source>Delete</source>
        <translation>Löschen</translation>
    </message>
    <message>
        <source>Show all</source>
        <translation>Alle zeigen</translation>
    </message>
    <message>
        <source>Show these</source>
        <translation>Diese zeigen</translation>
    </message>
    <message>
        <source>All rows are shown.</source>
        <translation>Alle Zeilen werden gezeigt.</translation>
    </message>
    <message>
        <source>%1 found</source>
        <translation>%1 gefunden</translation>
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
    <name>dx4::panel::SourceSheet</name>
    <message>
        <source>Which parameters?</source>
        <translation>Welche Parameter?</translation>
    </message>
    <message>
        <source>Cancel</source>
        <translation>Abbrechen</translation>
    </message>
    <message>
        <source>File...</source>
        <translation>Datei...</translation>
    </message>
    <message>
        <source>of this machine</source>
        <translation>von diesem Rechner</translation>
    </message>
    <message>
        <source>station %1</source>
        <translation>Station %1</translation>
    </message>
    <message>
        <source>Nothing</source>
        <translation>Nichts</translation>
    </message>
    <message>
        <source>On the left: where values come from.</source>
        <translation>Links: woher die Werte kommen.</translation>
    </message>
    <message>
        <source>On the right: the drive that values may be written to.</source>
        <translation>Rechts: der Antrieb, in den geschrieben werden darf.</translation>
    </message>
    <message>
        <source>folder</source>
        <translation>Ordner</translation>
    </message>
    <message>
        <source>One folder up</source>
        <translation>Ein Ordner höher</translation>
    </message>
    <message>
        <source>%1: no file NAME.txt is here.</source>
        <translation>%1: Hier ist keine Datei NAME.txt.</translation>
    </message>
</context>
<context>
    <name>dx4::panel::StationSheet</name>
    <message>
        <source>Station</source>
        <translation>Station</translation>
    </message>
    <message>
        <source>All</source>
        <translation>Alle</translation>
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
<context>
    <name>dx4::panel::TextSheet</name>
    <message>
        <source>Close</source>
        <translation>Schließen</translation>
    </message>
</context>
<context>
    <name>dx4::panel::TraceReading</name>
    <message>
        <source>on</source>
        <translation>ein</translation>
    </message>
    <message>
        <source>off</source>
        <translation>aus</translation>
    </message>
</context>
<context>
    <name>dx4::panel::TraceSaveSheet</name>
    <message>
        <source>Save what is seen</source>
        <translation>Speichern, was zu sehen ist</translation>
    </message>
    <message>
        <source>Table (CSV)</source>
        <translation>Tabelle (CSV)</translation>
    </message>
    <message>
        <source>Picture (PNG)</source>
        <translation>Bild (PNG)</translation>
    </message>
    <message>
        <source>Save</source>
        <translation>Speichern</translation>
    </message>
    <message>
        <source>Replace the file</source>
        <translation>Datei ersetzen</translation>
    </message>
    <message>
        <source>Close</source>
        <translation>Schließen</translation>
    </message>
    <message>
        <source>Saved as %1</source>
        <translation>Gespeichert als %1</translation>
    </message>
    <message>
        <source>There is a file %1 already. It is as it was.</source>
        <translation>Eine Datei %1 gibt es schon. Sie ist, wie sie war.</translation>
    </message>
    <message>
        <source>Not saved: %1</source>
        <translation>Nicht gespeichert: %1</translation>
    </message>
    <message>
        <source>File</source>
        <translation>Datei</translation>
    </message>
    <message>
        <source>Saving.</source>
        <translation>Wird gespeichert.</translation>
    </message>
</context>
<context>
    <name>dx4::panel::TraceSheet</name>
    <message>
        <source>Traces</source>
        <translation>Kurven</translation>
    </message>
    <message>
        <source>Drive before</source>
        <translation>Voriger Antrieb</translation>
    </message>
    <message>
        <source>Next drive</source>
        <translation>Nächster Antrieb</translation>
    </message>
    <message>
        <source>Back</source>
        <translation>Zurück</translation>
    </message>
    <message>
        <source>More</source>
        <translation>Mehr</translation>
    </message>
    <message>
        <source>Done</source>
        <translation>Fertig</translation>
    </message>
    <message>
        <source>Nothing was read yet</source>
        <translation>Noch nichts gelesen</translation>
    </message>
    <message>
        <source>%1 of %2 traces, %3 of %4 states</source>
        <translation>%1 von %2 Kurven, %3 von %4 Zuständen</translation>
    </message>
    <message>
        <source>State: %1</source>
        <translation>Zustand: %1</translation>
    </message>
</context>
<context>
    <name>dx4::panel::TraceView</name>
    <message>
        <source>Plot</source>
        <translation>Diagramm</translation>
    </message>
</context>
<context>
    <name>dx4::panel::TrendPage</name>
    <message>
        <source>10 s</source>
        <translation>10 s</translation>
    </message>
    <message>
        <source>1 min</source>
        <translation>1 min</translation>
    </message>
    <message>
        <source>10 min</source>
        <translation>10 min</translation>
    </message>
    <message>
        <source>1 h</source>
        <translation>1 h</translation>
    </message>
    <message>
        <source>8 h</source>
        <translation>8 h</translation>
    </message>
    <message>
        <source>24 h</source>
        <translation>24 h</translation>
    </message>
    <message>
        <source>Pause</source>
        <translation>Pause</translation>
    </message>
    <message>
        <source>Cursors</source>
        <translation>Cursor</translation>
    </message>
    <message>
        <source>Trigger...</source>
        <translation>Trigger...</translation>
    </message>
    <message>
        <source>Traces...</source>
        <translation>Kurven...</translation>
    </message>
    <message>
        <source>Save...</source>
        <translation>Speichern...</translation>
    </message>
    <message>
        <source>Waiting for the trigger</source>
        <translation>Wartet auf den Trigger</translation>
    </message>
    <message>
        <source>Trigger: %1</source>
        <translation>Trigger: %1</translation>
    </message>
    <message>
        <source>Paused at %1</source>
        <translation>Angehalten um %1</translation>
    </message>
    <message>
        <source>Live</source>
        <translation>Live</translation>
    </message>
</context>
<context>
    <name>dx4::panel::TrendStore</name>
    <message>
        <source>bit %1</source>
        <translation>Bit %1</translation>
    </message>
    <message>
        <source>Station %1</source>
        <translation>Station %1</translation>
    </message>
    <message>
        <source>%1: %2</source>
        <translation>%1: %2</translation>
    </message>
    <message>
        <source>fault %1</source>
        <translation>Störung %1</translation>
    </message>
</context>
<context>
    <name>dx4::panel::TriggerSheet</name>
    <message>
        <source>Trigger</source>
        <translation>Trigger</translation>
    </message>
    <message>
        <source>Do not wait</source>
        <translation>Nicht warten</translation>
    </message>
    <message>
        <source>Level of the trigger</source>
        <translation>Pegel des Triggers</translation>
    </message>
    <message>
        <source>A fault of any drive</source>
        <translation>Eine Störung eines Antriebs</translation>
    </message>
    <message>
        <source>Cancel</source>
        <translation>Abbrechen</translation>
    </message>
    <message>
        <source>The picture stands still with the moment in its middle. The recording goes on.</source>
        <translation>Das Bild steht still, mit dem Augenblick in der Mitte. Die Aufzeichnung geht weiter.</translation>
    </message>
    <message>
        <source>%1: %2 rises to a level...</source>
        <translation>%1: %2 steigt auf einen Pegel...</translation>
    </message>
    <message>
        <source>%1: %2 falls to a level...</source>
        <translation>%1: %2 fällt auf einen Pegel...</translation>
    </message>
</context>
</TS>
