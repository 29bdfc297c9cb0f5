<?xml version="1.0" encoding="utf-8"?>
<!DOCTYPE TS>
<TS version="2.1" language="de_DE">
<context>
    <name>CellText</name>
    <message>
        <source>%1, binary</source>
        <translation>%1, binär</translation>
    </message>
</context>
<context>
    <name>CommandLine</name>
    <message>
        <source>Composes SQL queries on a SQLite database: pick tables, watch the text grow, run it.

Without FILE it opens the database used last, or else a sample database. Databases are only read, never written.

Exit codes: 0 all went well, 1 wrong command line, 2 the database could not be opened, 3 no such table, 4 the query failed, 5 the deadline has passed, 6 the picture could not be written.</source>
        <translation>Stellt SQL-Abfragen auf einer SQLite-Datenbank zusammen: Tabellen wählen, den Text wachsen sehen, ausführen.

Ohne FILE wird die zuletzt benutzte Datenbank geöffnet, sonst eine Beispieldatenbank. Datenbanken werden nur gelesen, nie geschrieben.

Rückgabewerte: 0 alles gelungen, 1 falsche Befehlszeile, 2 die Datenbank ließ sich nicht öffnen, 3 keine solche Tabelle, 4 die Abfrage schlug fehl, 5 die Frist ist verstrichen, 6 das Bild ließ sich nicht schreiben.</translation>
    </message>
    <message>
        <source>A SQLite database.</source>
        <translation>Eine SQLite-Datenbank.</translation>
    </message>
    <message>
        <source>Only one database can be opened.</source>
        <translation>Es kann nur eine Datenbank geöffnet werden.</translation>
    </message>
    <message>
        <source>Give either --sample or a file, not both.</source>
        <translation>Entweder --sample oder eine Datei angeben, nicht beides.</translation>
    </message>
    <message>
        <source>--%1 does not take &quot;%2&quot;.</source>
        <translation>--%1 nimmt „%2“ nicht an.</translation>
    </message>
    <message>
        <source>Open the sample database.</source>
        <translation>Die Beispieldatenbank öffnen.</translation>
    </message>
    <message>
        <source>Put a table or view into the query, named TABLE or SCHEMA.TABLE; may be given several times.</source>
        <translation>Eine Tabelle oder Sicht in die Abfrage aufnehmen, als TABLE oder SCHEMA.TABLE; mehrfach möglich.</translation>
    </message>
    <message>
        <source>Run the query.</source>
        <translation>Die Abfrage ausführen.</translation>
    </message>
    <message>
        <source>Render the window into a picture FILE when all of that is done, and end. Needs no display with QT_QPA_PLATFORM=offscreen.</source>
        <translation>Wenn all das getan ist, das Fenster in die Bilddatei FILE zeichnen und enden. Braucht mit QT_QPA_PLATFORM=offscreen keine Anzeige.</translation>
    </message>
    <message>
        <source>The size of the window, such as 1200x800.</source>
        <translation>Die Größe des Fensters, etwa 1200x800.</translation>
    </message>
    <message>
        <source>Pixels for each logical pixel, such as 2.</source>
        <translation>Bildpunkte je logischem Bildpunkt, etwa 2.</translation>
    </message>
    <message>
        <source>system, light or dark.</source>
        <translation>system, light oder dark.</translation>
    </message>
    <message>
        <source>The language of the texts, such as de.</source>
        <translation>Die Sprache der Texte, etwa de.</translation>
    </message>
    <message>
        <source>Keep settings, and the sample database beside them, in FILE instead of the user&apos;s folders.</source>
        <translation>Einstellungen in FILE halten, und die Beispieldatenbank daneben, statt in den Ordnern des Benutzers.</translation>
    </message>
    <message>
        <source>How long --add, --run and --screenshot may take; 30 if not given.</source>
        <translation>Wie lange --add, --run und --screenshot dauern dürfen; ohne Angabe 30.</translation>
    </message>
</context>
<context>
    <name>QB::Desk::MainWindow</name>
    <message>
        <source>Open Database</source>
        <translation>Datenbank öffnen</translation>
    </message>
    <message>
        <source>SQLite databases (*.sqlite *.sqlite3 *.db *.db3);;All files (*)</source>
        <translation>SQLite-Datenbanken (*.sqlite *.sqlite3 *.db *.db3);;Alle Dateien (*)</translation>
    </message>
    <message>
        <source>Opening &quot;%1&quot;…</source>
        <translation>„%1“ wird geöffnet …</translation>
    </message>
    <message>
        <source>Discard the query?</source>
        <translation>Abfrage verwerfen?</translation>
    </message>
    <message>
        <source>The query has been changed since its text was last copied or run. Discard it?</source>
        <translation>Die Abfrage wurde geändert, seit ihr Text zuletzt kopiert oder ausgeführt wurde. Verwerfen?</translation>
    </message>
    <message>
        <source>The SQL text is on the clipboard.</source>
        <translation>Der SQL-Text ist in der Zwischenablage.</translation>
    </message>
    <message>
        <source>The query is not complete</source>
        <translation>Die Abfrage ist nicht vollständig</translation>
    </message>
    <message>
        <source>Some parts of the query are marked as incomplete, so the server may refuse it. Carry on?</source>
        <translation>Einige Teile der Abfrage sind als unvollständig markiert, der Server wird sie vielleicht ablehnen. Fortfahren?</translation>
    </message>
    <message>
        <source>%1 – %2</source>
        <translation>%1 – %2</translation>
    </message>
    <message>
        <source>About Joinery</source>
        <translation>Über Joinery</translation>
    </message>
    <message>
        <source>Joinery %1

Composes SQL queries: pick tables, watch the text grow, run it.</source>
        <translation>Joinery %1

Stellt SQL-Abfragen zusammen: Tabellen wählen, den Text wachsen sehen, ausführen.</translation>
    </message>
    <message>
        <source>Query builder</source>
        <translation>Abfragegenerator</translation>
    </message>
</context>
<context>
    <name>QB::Desk::MessageBar</name>
    <message>
        <source>Error</source>
        <translation>Fehler</translation>
    </message>
    <message>
        <source>Note</source>
        <translation>Hinweis</translation>
    </message>
    <message>
        <source>Close this message</source>
        <translation>Diese Meldung schließen</translation>
    </message>
</context>
<context>
    <name>QB::Desk::ResultGrid</name>
    <message>
        <source>At the end of the text.</source>
        <translation>Am Ende des Textes.</translation>
    </message>
    <message>
        <source>In line %1, at: %2</source>
        <translation>In Zeile %1, bei: %2</translation>
    </message>
    <message>
        <source>1 row</source>
        <translation>1 Zeile</translation>
    </message>
    <message>
        <source>%1 rows</source>
        <translation>%1 Zeilen</translation>
    </message>
    <message>
        <source>No query has run yet</source>
        <translation>Noch keine Abfrage ausgeführt</translation>
    </message>
    <message>
        <source>Running: %1 so far</source>
        <translation>Läuft: bisher %1</translation>
    </message>
    <message>
        <source>The query failed</source>
        <translation>Die Abfrage ist fehlgeschlagen</translation>
    </message>
    <message>
        <source>Cancelled after %1</source>
        <translation>Abgebrochen nach %1</translation>
    </message>
    <message>
        <source>%1 s</source>
        <translation>%1 s</translation>
    </message>
    <message>
        <source>The first %1 in %2; there are more than the row limit lets through</source>
        <translation>Die ersten %1 in %2; die Zeilengrenze lässt nicht mehr durch</translation>
    </message>
    <message>
        <source>%1 in %2</source>
        <translation>%1 in %2</translation>
    </message>
    <message>
        <source>Result rows</source>
        <translation>Ergebniszeilen</translation>
    </message>
    <message>
        <source>&amp;Copy</source>
        <translation>&amp;Kopieren</translation>
    </message>
    <message>
        <source>Copy with &amp;headers</source>
        <translation>Mit &amp;Überschriften kopieren</translation>
    </message>
    <message>
        <source>&amp;Stop</source>
        <translation>A&amp;bbrechen</translation>
    </message>
    <message>
        <source>Stop the query (Esc)</source>
        <translation>Die Abfrage abbrechen (Esc)</translation>
    </message>
    <message>
        <source>Row &amp;limit:</source>
        <translation>Zeilen&amp;grenze:</translation>
    </message>
    <message>
        <source>Row limit</source>
        <translation>Zeilengrenze</translation>
    </message>
    <message>
        <source>none</source>
        <translation>keine</translation>
    </message>
    <message>
        <source>less than 1 ms</source>
        <translation>weniger als 1 ms</translation>
    </message>
    <message>
        <source>%1 ms</source>
        <translation>%1 ms</translation>
    </message>
</context>
<context>
    <name>QB::Desk::ScriptedStart</name>
    <message>
        <source>The deadline of %1 s has passed.</source>
        <translation>Die Frist von %1 s ist verstrichen.</translation>
    </message>
    <message>
        <source>There is no table or view &quot;%1&quot;.</source>
        <translation>Es gibt keine Tabelle oder Sicht „%1“.</translation>
    </message>
    <message>
        <source>The picture &quot;%1&quot; could not be written.</source>
        <translation>Das Bild „%1“ ließ sich nicht schreiben.</translation>
    </message>
</context>
<context>
    <name>QB::Desk::WindowActions</name>
    <message>
        <source>&amp;File</source>
        <translation>&amp;Datei</translation>
    </message>
    <message>
        <source>&amp;Open Database…</source>
        <translation>Datenbank ö&amp;ffnen …</translation>
    </message>
    <message>
        <source>Open &amp;Recent</source>
        <translation>&amp;Zuletzt geöffnet</translation>
    </message>
    <message>
        <source>&amp;Clear List</source>
        <translation>Liste &amp;leeren</translation>
    </message>
    <message>
        <source>Open &amp;Sample Database</source>
        <translation>&amp;Beispieldatenbank öffnen</translation>
    </message>
    <message>
        <source>Re&amp;load Objects</source>
        <translation>Objekte neu &amp;laden</translation>
    </message>
    <message>
        <source>&amp;Quit</source>
        <translation>&amp;Beenden</translation>
    </message>
    <message>
        <source>&amp;Query</source>
        <translation>Ab&amp;frage</translation>
    </message>
    <message>
        <source>&amp;New Query</source>
        <translation>&amp;Neue Abfrage</translation>
    </message>
    <message>
        <source>&amp;Run</source>
        <translation>&amp;Ausführen</translation>
    </message>
    <message>
        <source>&amp;Stop</source>
        <translation>A&amp;bbrechen</translation>
    </message>
    <message>
        <source>&amp;Copy SQL Text</source>
        <translation>SQL-Text &amp;kopieren</translation>
    </message>
    <message>
        <source>&amp;View</source>
        <translation>An&amp;sicht</translation>
    </message>
    <message>
        <source>&amp;Theme</source>
        <translation>&amp;Farben</translation>
    </message>
    <message>
        <source>As the &amp;System</source>
        <translation>Wie das &amp;System</translation>
    </message>
    <message>
        <source>&amp;Light</source>
        <translation>&amp;Hell</translation>
    </message>
    <message>
        <source>&amp;Dark</source>
        <translation>&amp;Dunkel</translation>
    </message>
    <message>
        <source>L&amp;anguage</source>
        <translation>&amp;Sprache</translation>
    </message>
    <message>
        <source>&amp;Help</source>
        <translation>&amp;Hilfe</translation>
    </message>
    <message>
        <source>&amp;About Joinery</source>
        <translation>&amp;Über Joinery</translation>
    </message>
</context>
<context>
    <name>SampleDatabase</name>
    <message>
        <source>The sample database &quot;%1&quot; could not be written: %2</source>
        <translation>Die Beispieldatenbank „%1“ ließ sich nicht schreiben: %2</translation>
    </message>
</context>
</TS>
