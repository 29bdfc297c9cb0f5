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
        <source>Composes SQL queries on a SQLite database: pick tables, watch the text grow, run it.

Without a database it opens the one used last, or else a sample database. Databases are only read, never written.

Exit codes: 0 all went well, 1 wrong command line, 2 the database could not be opened, 3 no such table, 4 the query failed, 5 the deadline has passed, 6 the picture could not be written, 7 the query or the SQL text could not be read or was refused.</source>
        <translation>Stellt SQL-Abfragen auf einer SQLite-Datenbank zusammen: Tabellen wählen, den Text wachsen sehen, ausführen.

Ohne Datenbank wird die zuletzt benutzte geöffnet, sonst eine Beispieldatenbank. Datenbanken werden nur gelesen, nie geschrieben.

Rückgabewerte: 0 alles gelungen, 1 falsche Befehlszeile, 2 die Datenbank ließ sich nicht öffnen, 3 keine solche Tabelle, 4 die Abfrage schlug fehl, 5 die Frist ist verstrichen, 6 das Bild ließ sich nicht schreiben, 7 die Abfrage oder der SQL-Text ließ sich nicht lesen oder wurde abgelehnt.</translation>
    </message>
    <message>
        <source>Open SQL text in the SQL tab, and load it into the builder if it is accepted.</source>
        <translation>SQL-Text auf der SQL-Seite öffnen und in den Generator laden, wenn er angenommen wird.</translation>
    </message>
    <message>
        <source>How long --sql, --add, --run and --screenshot may take; 30 if not given.</source>
        <translation>Wie lange --sql, --add, --run und --screenshot dauern dürfen; ohne Angabe 30.</translation>
    </message>
    <message>
        <source>Bring up a clause, such as WHERE or "GROUP BY", or DIAGRAM; may be given several times.</source>
        <translation>Eine Klausel nach vorn holen, etwa WHERE oder „GROUP BY“, oder DIAGRAM; kann mehrfach angegeben werden.</translation>
    </message>
    <message>
        <source>Of the window, picture only the widget with that object name, such as tabWidget for the clauses or diagramPanel.</source>
        <translation>Vom Fenster nur das Element mit diesem Objektnamen abbilden, etwa tabWidget für die Klauseln oder diagramPanel.</translation>
    </message>
    <message>
        <source>Instead of a database show a diagram of 200 items and 300 links to play with.</source>
        <translation>Statt einer Datenbank ein Diagramm mit 200 Objekten und 300 Verbindungen zum Ausprobieren zeigen.</translation>
    </message>
    <message>
        <source>--canvas-demo takes neither a database nor a query nor --part.</source>
        <translation>--canvas-demo nimmt weder eine Datenbank noch eine Abfrage noch --part an.</translation>
    </message>
    <message>
        <source>Only one query or SQL text can be opened.</source>
        <translation>Es kann nur eine Abfrage oder ein SQL-Text geöffnet werden.</translation>
    </message>
    <message>
        <source>A SQLite database, and a saved query (*.joinery) or SQL text (*.sql).</source>
        <translation>Eine SQLite-Datenbank und eine gespeicherte Abfrage (*.joinery) oder SQL-Text (*.sql).</translation>
    </message>
</context>
<context>
    <name>QB::Desk::CanvasDemoWindow</name>
    <message>
        <source>Canvas: %1 items, %2 links</source>
        <translation>Zeichenfläche: %1 Objekte, %2 Verbindungen</translation>
    </message>
    <message>
        <source>&amp;View</source>
        <translation>&amp;Ansicht</translation>
    </message>
    <message>
        <source>Links between &amp;Fields</source>
        <translation>Verbindungen zwischen &amp;Feldern</translation>
    </message>
    <message>
        <source>Saved as &quot;%1&quot;.</source>
        <translation>Gespeichert als „%1“.</translation>
    </message>
    <message>
        <source>The picture &quot;%1&quot; could not be written.</source>
        <translation>Das Bild „%1“ ließ sich nicht schreiben.</translation>
    </message>
    <message>
        <source>&amp;Undo Arrange</source>
        <translation>Anordnen &amp;rückgängig</translation>
    </message>
</context>
<context>
    <name>QB::Desk::DiagramActions</name>
    <message>
        <source>Zoom &amp;In</source>
        <translation>Ver&amp;größern</translation>
    </message>
    <message>
        <source>Zoom &amp;Out</source>
        <translation>Ver&amp;kleinern</translation>
    </message>
    <message>
        <source>Actual &amp;Size</source>
        <translation>&amp;Originalgröße</translation>
    </message>
    <message>
        <source>&amp;Fit to View</source>
        <translation>&amp;Einpassen</translation>
    </message>
    <message>
        <source>O&amp;verview Map</source>
        <translation>Ü&amp;bersichtskarte</translation>
    </message>
    <message>
        <source>&amp;Arrange Diagram</source>
        <translation>Diagramm &amp;anordnen</translation>
    </message>
    <message>
        <source>Save Diagram as &amp;Picture…</source>
        <translation>Diagramm als Bi&amp;ld speichern …</translation>
    </message>
    <message>
        <source>Save Diagram as Picture</source>
        <translation>Diagramm als Bild speichern</translation>
    </message>
    <message>
        <source>PNG pictures (*.png);;SVG drawings (*.svg);;PDF documents (*.pdf)</source>
        <translation>PNG-Bilder (*.png);;SVG-Zeichnungen (*.svg);;PDF-Dokumente (*.pdf)</translation>
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
        <source>The SQL text is on the clipboard.</source>
        <translation>Der SQL-Text ist in der Zwischenablage.</translation>
    </message>
    <message>
        <source>Some parts of the query are marked as incomplete, so the server may refuse it.</source>
        <translation>Einige Teile der Abfrage sind als unvollständig markiert, der Server wird sie vielleicht ablehnen.</translation>
    </message>
    <message>
        <source>&amp;Run anyway</source>
        <translation>&amp;Trotzdem ausführen</translation>
    </message>
    <message>
        <source>&amp;Copy anyway</source>
        <translation>&amp;Trotzdem kopieren</translation>
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
    <message>
        <source>The SQL text is not applied, so nothing was done.</source>
        <translation>Der SQL-Text ist nicht angewendet, darum geschah nichts.</translation>
    </message>
    <message>
        <source>Open SQL Text</source>
        <translation>SQL-Text öffnen</translation>
    </message>
    <message>
        <source>SQL text (*.sql);;All files (*)</source>
        <translation>SQL-Text (*.sql);;Alle Dateien (*)</translation>
    </message>
    <message>
        <source>Save SQL Text</source>
        <translation>SQL-Text speichern</translation>
    </message>
    <message>
        <source>The file has changed</source>
        <translation>Die Datei hat sich geändert</translation>
    </message>
    <message>
        <source>Somebody else has written &quot;%1&quot; since it was opened. Write over it?</source>
        <translation>Seit dem Öffnen hat jemand anderes „%1“ geschrieben. Überschreiben?</translation>
    </message>
    <message>
        <source>Save the SQL text?</source>
        <translation>SQL-Text speichern?</translation>
    </message>
    <message>
        <source>The SQL text has been edited and is not saved.</source>
        <translation>Der SQL-Text wurde bearbeitet und ist nicht gespeichert.</translation>
    </message>
    <message>
        <source>The SQL text is saved in &quot;%1&quot;.</source>
        <translation>Der SQL-Text ist in „%1“ gespeichert.</translation>
    </message>
    <message>
        <source>The query is saved as it is, though it is incomplete. As long as it is, opening the file brings its text into the SQL tab only.</source>
        <translation>Die Abfrage ist gespeichert, wie sie ist, obwohl sie unvollständig ist. Solange sie das ist, bringt das Öffnen der Datei ihren Text nur in den SQL-Reiter.</translation>
    </message>
    <message>
        <source>The picture is saved in &quot;%1&quot;.</source>
        <translation>Das Bild ist in „%1“ gespeichert.</translation>
    </message>
    <message>
        <source>&amp;Undo</source>
        <translation>&amp;Rückgängig</translation>
    </message>
    <message>
        <source>&amp;Undo %1</source>
        <translation>&amp;Rückgängig: %1</translation>
    </message>
    <message>
        <source>&amp;Redo</source>
        <translation>&amp;Wiederholen</translation>
    </message>
    <message>
        <source>&amp;Redo %1</source>
        <translation>&amp;Wiederholen: %1</translation>
    </message>
    <message>
        <source>Work that was not saved before a crash is damaged, and lies in &quot;%1&quot; now. %2</source>
        <translation>Arbeit, die vor einem Absturz nicht gespeichert war, ist beschädigt und liegt nun in „%1“. %2</translation>
    </message>
    <message>
        <source>Joinery ended before a query was saved (%1, %2).</source>
        <translation>Joinery endete, bevor eine Abfrage gespeichert war (%1, %2).</translation>
    </message>
    <message>
        <source>&amp;Restore</source>
        <translation>&amp;Wiederherstellen</translation>
    </message>
    <message>
        <source>&amp;Discard</source>
        <translation>&amp;Verwerfen</translation>
    </message>
    <message>
        <source>Open Query</source>
        <translation>Abfrage öffnen</translation>
    </message>
    <message>
        <source>Queries (*.joinery);;All files (*)</source>
        <translation>Abfragen (*.joinery);;Alle Dateien (*)</translation>
    </message>
    <message>
        <source>&quot;%1&quot; is a query for %2. Only databases of SQLite can be opened here.</source>
        <translation>„%1“ ist eine Abfrage für %2. Hier lassen sich nur Datenbanken von SQLite öffnen.</translation>
    </message>
    <message>
        <source>&quot;%1&quot;: %2
Its text is in the SQL tab; the query in the builder is as it was.</source>
        <translation>„%1“: %2
Ihr Text steht im SQL-Reiter; die Abfrage im Generator ist, wie sie war.</translation>
    </message>
    <message>
        <source>The schema &quot;%1&quot; of this query is not there. Names are looked for in &quot;%2&quot;.</source>
        <translation>Das Schema „%1“ dieser Abfrage ist nicht da. Namen werden in „%2“ gesucht.</translation>
    </message>
    <message>
        <source>The database &quot;%1&quot; of this query is not there. The query is opened on &quot;%2&quot;.</source>
        <translation>Die Datenbank „%1“ dieser Abfrage ist nicht da. Die Abfrage ist auf „%2“ geöffnet.</translation>
    </message>
    <message>
        <source>Save Query</source>
        <translation>Abfrage speichern</translation>
    </message>
    <message>
        <source>The query is saved in &quot;%1&quot;.</source>
        <translation>Die Abfrage ist in „%1“ gespeichert.</translation>
    </message>
    <message>
        <source>Save the query?</source>
        <translation>Abfrage speichern?</translation>
    </message>
    <message>
        <source>The query has been changed and is not saved.</source>
        <translation>Die Abfrage wurde geändert und ist nicht gespeichert.</translation>
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
    <message>
        <source>Question</source>
        <translation>Frage</translation>
    </message>
</context>
<context>
    <name>QB::Desk::QueryApplier</name>
    <message>
        <source>The builder did not take the text, although it was accepted before. The query is as it was.</source>
        <translation>Der Generator hat den Text nicht übernommen, obwohl er zuvor angenommen wurde. Die Abfrage ist, wie sie war.</translation>
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
    <message>
        <source>There is no clause "%1".</source>
        <translation>Es gibt keine Klausel „%1“.</translation>
    </message>
</context>
<context>
    <name>QB::Desk::SqlChecker</name>
    <message>
        <source>The text could not be checked.</source>
        <translation>Der Text ließ sich nicht prüfen.</translation>
    </message>
</context>
<context>
    <name>QB::Desk::SqlTab</name>
    <message>
        <source>The text was edited while &quot;%1&quot; was read, so it stays. Open the file again.</source>
        <translation>Während „%1“ gelesen wurde, wurde der Text bearbeitet; darum bleibt er. Bitte die Datei noch einmal öffnen.</translation>
    </message>
    <message>
        <source>Applying…</source>
        <translation>Wird angewendet …</translation>
    </message>
    <message>
        <source>Open a database: its family decides how the text is read.</source>
        <translation>Bitte eine Datenbank öffnen: ihre Art entscheidet, wie der Text gelesen wird.</translation>
    </message>
    <message>
        <source>Type or paste a SELECT statement, or open a file.</source>
        <translation>Eine SELECT-Anweisung eingeben oder einfügen, oder eine Datei öffnen.</translation>
    </message>
    <message>
        <source>Checking…</source>
        <translation>Wird geprüft …</translation>
    </message>
    <message>
        <source>Accepted. The builder has another query.</source>
        <translation>Angenommen. Der Generator hat eine andere Abfrage.</translation>
    </message>
    <message>
        <source>The query in the builder has been changed since this text was applied.</source>
        <translation>Die Abfrage im Generator wurde geändert, seit dieser Text angewendet wurde.</translation>
    </message>
    <message>
        <source>This is the query in the builder.</source>
        <translation>Das ist die Abfrage im Generator.</translation>
    </message>
    <message>
        <source>The lines of the file ended in several ways; here, and when it is saved, they all end alike.</source>
        <translation>Die Zeilen der Datei endeten verschieden; hier, und beim Speichern, enden sie alle gleich.</translation>
    </message>
    <message>
        <source>Line %1, column %2</source>
        <translation>Zeile %1, Spalte %2</translation>
    </message>
    <message>
        <source>SQL</source>
        <translation>SQL</translation>
    </message>
    <message>
        <source>%1 for %2</source>
        <translation>%1 für %2</translation>
    </message>
    <message>
        <source>SQL text</source>
        <translation>SQL-Text</translation>
    </message>
    <message>
        <source>Tab indents; Ctrl+Tab goes on to the next field, Ctrl+Shift+Tab back.</source>
        <translation>Tab rückt ein; Strg+Tab geht zum nächsten Feld weiter, Strg+Umschalt+Tab zurück.</translation>
    </message>
    <message>
        <source>Place of the cursor</source>
        <translation>Ort der Schreibmarke</translation>
    </message>
    <message>
        <source>&amp;Go to error</source>
        <translation>Zum Feh&amp;ler</translation>
    </message>
    <message>
        <source>Put the cursor where the error is (F8)</source>
        <translation>Die Schreibmarke an den Fehler setzen (F8)</translation>
    </message>
    <message>
        <source>Fr&amp;om builder</source>
        <translation>Aus Genera&amp;tor</translation>
    </message>
    <message>
        <source>Show the text of the query in the builder here; undo brings this text back</source>
        <translation>Den Text der Abfrage im Generator hier zeigen; Rückgängig holt diesen Text zurück</translation>
    </message>
    <message>
        <source>&amp;Apply</source>
        <translation>An&amp;wenden</translation>
    </message>
    <message>
        <source>Load this text into the builder (Ctrl+Return)</source>
        <translation>Diesen Text in den Generator laden (Strg+Eingabe)</translation>
    </message>
    <message>
        <source>Very long lines were broken after commas and before keywords.</source>
        <translation>Sehr lange Zeilen wurden nach Kommas und vor Schlüsselwörtern umbrochen.</translation>
    </message>
    <message>
        <source>This text is that of a subquery which is closed. Open the subquery to put it back there, or apply again to put it into the query that is shown.</source>
        <translation>Dieser Text ist der einer Unterabfrage, die geschlossen ist. Öffnen Sie die Unterabfrage, um ihn dorthin zurückzubringen, oder wenden Sie ihn erneut an, um ihn in die gezeigte Abfrage zu setzen.</translation>
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
        <source>&amp;Help</source>
        <translation>&amp;Hilfe</translation>
    </message>
    <message>
        <source>&amp;About Joinery</source>
        <translation>&amp;Über Joinery</translation>
    </message>
    <message>
        <source>Open Sam&amp;ple Database</source>
        <translation>Beis&amp;pieldatenbank öffnen</translation>
    </message>
    <message>
        <source>Open SQL &amp;Text…</source>
        <translation>SQL-&amp;Text öffnen …</translation>
    </message>
    <message>
        <source>&amp;Edit SQL Text</source>
        <translation>SQL-Text &amp;bearbeiten</translation>
    </message>
    <message>
        <source>&amp;Apply SQL Text</source>
        <translation>SQL-Text an&amp;wenden</translation>
    </message>
    <message>
        <source>Load SQL Text from &amp;Builder</source>
        <translation>SQL-Text aus &amp;Generator laden</translation>
    </message>
    <message>
        <source>&amp;Go to Error</source>
        <translation>Zum Feh&amp;ler</translation>
    </message>
    <message>
        <source>&amp;Edit</source>
        <translation>&amp;Bearbeiten</translation>
    </message>
    <message>
        <source>Open Quer&amp;y…</source>
        <translation>Abfrag&amp;e öffnen …</translation>
    </message>
    <message>
        <source>&amp;Save Query</source>
        <translation>Abfrage &amp;speichern</translation>
    </message>
    <message>
        <source>Save Query &amp;As…</source>
        <translation>Abfrage speichern &amp;unter …</translation>
    </message>
    <message>
        <source>Save SQL Te&amp;xt</source>
        <translation>S&amp;QL-Text speichern</translation>
    </message>
    <message>
        <source>Sa&amp;ve SQL Text As…</source>
        <translation>SQL-Te&amp;xt speichern unter …</translation>
    </message>
    <message>
        <source>Links between &amp;Tables</source>
        <translation>Verbindungen zwischen &amp;Tabellen</translation>
    </message>
    <message>
        <source>&amp;Links between Fields</source>
        <translation>Verbindungen zwischen &amp;Feldern</translation>
    </message>
    <message>
        <source>T&amp;heme</source>
        <translation>Farbe&amp;n</translation>
    </message>
    <message>
        <source>Lan&amp;guage</source>
        <translation>&amp;Sprache</translation>
    </message>
</context>
<context>
    <name>SampleDatabase</name>
    <message>
        <source>The sample database &quot;%1&quot; could not be written: %2</source>
        <translation>Die Beispieldatenbank „%1“ ließ sich nicht schreiben: %2</translation>
    </message>
</context>
<context>
    <name>TextFile</name>
    <message>
        <source>&quot;%1&quot; is too large: it has %2, and at most %3 are opened.</source>
        <translation>„%1“ ist zu groß: die Datei hat %2, und höchstens %3 werden geöffnet.</translation>
    </message>
    <message>
        <source>There is no file &quot;%1&quot;.</source>
        <translation>Es gibt keine Datei „%1“.</translation>
    </message>
    <message>
        <source>&quot;%1&quot; is a folder, not a file.</source>
        <translation>„%1“ ist ein Ordner, keine Datei.</translation>
    </message>
    <message>
        <source>&quot;%1&quot; is not a regular file.</source>
        <translation>„%1“ ist keine gewöhnliche Datei.</translation>
    </message>
    <message>
        <source>&quot;%1&quot; cannot be read: %2</source>
        <translation>„%1“ lässt sich nicht lesen: %2</translation>
    </message>
    <message>
        <source>&quot;%1&quot; is not UTF-8: in line %2 there are bytes that are no character.</source>
        <translation>„%1“ ist kein UTF-8: in Zeile %2 stehen Bytes, die kein Zeichen sind.</translation>
    </message>
    <message>
        <source>&quot;%1&quot; cannot be written: %2</source>
        <translation>„%1“ lässt sich nicht schreiben: %2</translation>
    </message>
</context>
<context>
    <name>QueryFile</name>
    <message>
        <source>&quot;%1&quot; is missing.</source>
        <translation>„%1“ fehlt.</translation>
    </message>
    <message>
        <source>&quot;%1&quot; is of a wrong type.</source>
        <translation>„%1“ ist von falscher Art.</translation>
    </message>
    <message>
        <source>It holds something else.</source>
        <translation>Sie enthält etwas anderes.</translation>
    </message>
    <message>
        <source>A newer version of Joinery has written it: its format is %1, and this one reads %2.</source>
        <translation>Eine neuere Version von Joinery hat sie geschrieben: ihr Format ist %1, und diese liest %2.</translation>
    </message>
    <message>
        <source>There is no format %1.</source>
        <translation>Ein Format %1 gibt es nicht.</translation>
    </message>
    <message>
        <source>There is no database family &quot;%1&quot;.</source>
        <translation>Die Datenbankfamilie „%1“ gibt es nicht.</translation>
    </message>
    <message>
        <source>It is damaged in line %1 (%2).</source>
        <translation>Sie ist in Zeile %1 beschädigt (%2).</translation>
    </message>
    <message>
        <source>&quot;%1&quot; is not a query of Joinery. %2</source>
        <translation>„%1“ ist keine Abfrage von Joinery. %2</translation>
    </message>
</context>
<context>
    <name>QB::Desk::Journal</name>
    <message>
        <source>Unsaved work cannot be kept in &quot;%1&quot;, in case the program crashes.</source>
        <translation>Ungespeicherte Arbeit lässt sich nicht in „%1“ für den Fall eines Absturzes aufbewahren.</translation>
    </message>
</context>
</TS>
