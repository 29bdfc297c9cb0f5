<?xml version="1.0" encoding="utf-8"?>
<!DOCTYPE TS>
<TS version="2.1" language="de_DE">
<context>
    <name>Tolk</name>
    <message>
        <source>Main query</source>
        <translation>Hauptabfrage</translation>
    </message>
    <message>
        <source>Subquery %d</source>
        <translation>Unterabfrage %d</translation>
    </message>
    <message>
        <source>Build &amp;&amp; &amp;run</source>
        <translation>Erstellen &amp;&amp; &amp;ausführen</translation>
    </message>
    <message>
        <source>&amp;Build</source>
        <translation>&amp;Erstellen</translation>
    </message>
    <message>
        <source>Cancel</source>
        <translation>Abbrechen</translation>
    </message>
    <message>
        <source>Show or hide the object tree</source>
        <translation>Objektbaum ein- oder ausblenden</translation>
    </message>
    <message>
        <source>Show or hide the query preview</source>
        <translation>Abfragevorschau ein- oder ausblenden</translation>
    </message>
    <message>
        <source>Path of query layers</source>
        <translation>Pfad der Abfrageebenen</translation>
    </message>
    <message>
        <source>Clauses of the query</source>
        <translation>Teile der Abfrage</translation>
    </message>
    <message>
        <source>Query preview</source>
        <translation>Abfragevorschau</translation>
    </message>
    <message>
        <source>Cop&amp;y</source>
        <translation>&amp;Kopieren</translation>
    </message>
    <message>
        <source>Copy the query text to the clipboard</source>
        <translation>Den Abfragetext in die Zwischenablage kopieren</translation>
    </message>
    <message>
        <source>Double click tree item or drag it here</source>
        <translation>Objekt im Baum doppelklicken oder hierher ziehen</translation>
    </message>
    <message>
        <source>Table Relation</source>
        <translation>Tabellenbeziehung</translation>
    </message>
    <message>
        <source>Field Relation</source>
        <translation>Feldbeziehung</translation>
    </message>
    <message>
        <source>Links shown</source>
        <translation>Gezeigte Verbindungen</translation>
    </message>
    <message>
        <source>Move on the diagram</source>
        <translation>Im Diagramm verschieben</translation>
    </message>
    <message>
        <source>Resize on the diagram</source>
        <translation>Größe im Diagramm ändern</translation>
    </message>
    <message>
        <source>Arrange the diagram</source>
        <translation>Diagramm anordnen</translation>
    </message>
    <message>
        <source>Diagram</source>
        <translation>Diagramm</translation>
    </message>
    <message>
        <source>Database objects</source>
        <translation>Datenbankobjekte</translation>
    </message>
    <message>
        <source>Refresh</source>
        <translation>Aktualisieren</translation>
    </message>
    <message>
        <source>Add to query</source>
        <translation>Zur Abfrage hinzufügen</translation>
    </message>
    <message>
        <source>Filter objects</source>
        <translation>Objekte filtern</translation>
    </message>
    <message>
        <source>Show only objects whose name contains this text</source>
        <translation>Nur Objekte zeigen, deren Name diesen Text enthält</translation>
    </message>
    <message>
        <source>No loaded object has such a name</source>
        <translation>Kein geladenes Objekt hat einen solchen Namen</translation>
    </message>
    <message>
        <source>Loading...</source>
        <translation>Wird geladen ...</translation>
    </message>
    <message>
        <source>The host kit cannot connect to %s yet.</source>
        <translation>Das Host-Kit kann noch keine Verbindung zu %s herstellen.</translation>
    </message>
    <message>
        <source>No database file is given.</source>
        <translation>Es ist keine Datenbankdatei angegeben.</translation>
    </message>
    <message>
        <source>There is no file %s.</source>
        <translation>Die Datei %s gibt es nicht.</translation>
    </message>
    <message>
        <source>%s is a folder, not a database file.</source>
        <translation>%s ist ein Ordner, keine Datenbankdatei.</translation>
    </message>
    <message>
        <source>%s is not a regular file.</source>
        <translation>%s ist keine gewöhnliche Datei.</translation>
    </message>
    <message>
        <source>%s cannot be read: permission denied.</source>
        <translation>%s kann nicht gelesen werden: Zugriff verweigert.</translation>
    </message>
    <message>
        <source>Cannot open %s: %s</source>
        <translation>%s kann nicht geöffnet werden: %s</translation>
    </message>
    <message>
        <source>The database is closed.</source>
        <translation>Die Datenbank ist geschlossen.</translation>
    </message>
    <message>
        <source>The server gave no reason.</source>
        <translation>Der Server hat keinen Grund genannt.</translation>
    </message>
    <message>
        <source>Cannot read the database objects: %s</source>
        <translation>Die Datenbankobjekte können nicht gelesen werden: %s</translation>
    </message>
    <message>
        <source>There is no statement to run.</source>
        <translation>Es gibt keine Anweisung zum Ausführen.</translation>
    </message>
    <message>
        <source>The statement was stopped after %d ms.</source>
        <translation>Die Anweisung wurde nach %d ms angehalten.</translation>
    </message>
    <message>
        <source>The statement left a transaction open; it was rolled back.</source>
        <translation>Die Anweisung ließ eine Transaktion offen; sie wurde zurückgerollt.</translation>
    </message>
    <message>
        <source>The query cannot be read</source>
        <translation>Die Abfrage kann nicht gelesen werden</translation>
    </message>
    <message>
        <source>Several statements in one text are not supported.</source>
        <translation>Mehrere Anweisungen in einem Text werden nicht unterstützt.</translation>
    </message>
    <message>
        <source>Only SELECT statements are supported.</source>
        <translation>Nur SELECT-Anweisungen werden unterstützt.</translation>
    </message>
    <message>
        <source>%s: the text contains a NUL character</source>
        <translation>%s: Der Text enthält ein NUL-Zeichen</translation>
    </message>
    <message>
        <source>the text is longer than 2 GiB</source>
        <translation>Der Text ist länger als 2 GiB</translation>
    </message>
    <message>
        <source>The query cannot be represented:

%s: from here on the text built from it would not mean the same</source>
        <translation>Die Abfrage lässt sich nicht darstellen:

%s: Ab hier würde der daraus gebildete Text nicht dasselbe bedeuten</translation>
    </message>
    <message>
        <source>The query cannot be represented: no text generator is installed to check it with.</source>
        <translation>Die Abfrage lässt sich nicht darstellen: Es ist kein Textgenerator installiert, mit dem sie geprüft würde.</translation>
    </message>
    <message>
        <source>These tables are joined by columns of the same name (USING). Change the join to ON before comparing columns of different names.</source>
        <translation>Diese Tabellen sind über gleichnamige Spalten verbunden (USING). Stellen Sie die Verbindung auf ON um, bevor Sie verschieden benannte Spalten vergleichen.</translation>
    </message>
    <message>
        <source>These tables are joined by CROSS JOIN, which takes no condition. The comparison is kept, and becomes part of the query once you choose another kind of join.</source>
        <translation>Diese Tabellen sind durch CROSS JOIN verbunden, der keine Bedingung hat. Der Vergleich bleibt erhalten und wird Teil der Abfrage, sobald Sie eine andere Join-Art wählen.</translation>
    </message>
    <message>
        <source>Without a condition the join is written as %s now, which compares all columns of the same name. Give it a condition, or choose another kind of join.</source>
        <translation>Ohne Bedingung wird der Join jetzt als %s geschrieben, der alle gleichnamigen Spalten vergleicht. Geben Sie ihm eine Bedingung, oder wählen Sie eine andere Join-Art.</translation>
    </message>
    <message>
        <source>The join compared all columns of the same name (NATURAL). Now it compares only what its condition says.</source>
        <translation>Der Join hat alle gleichnamigen Spalten verglichen (NATURAL). Jetzt vergleicht er nur, was seine Bedingung sagt.</translation>
    </message>
    <message>
        <source>A NATURAL JOIN takes no condition. Choose another kind of join, or remove the comparison again.</source>
        <translation>Ein NATURAL JOIN hat keine Bedingung. Wählen Sie eine andere Join-Art, oder entfernen Sie den Vergleich wieder.</translation>
    </message>
    <message>
        <source>Row offset</source>
        <translation>Zeilenversatz</translation>
    </message>
    <message>
        <source>Row count</source>
        <translation>Zeilenzahl</translation>
    </message>
    <message>
        <source>offset (optional)</source>
        <translation>Versatz (optional)</translation>
    </message>
    <message>
        <source>row count</source>
        <translation>Zeilenzahl</translation>
    </message>
    <message>
        <source>A whole number from 0 to %d, or nothing.</source>
        <translation>Eine ganze Zahl von 0 bis %d oder nichts.</translation>
    </message>
    <message>
        <source>Some parts of this clause are incomplete or wrong.</source>
        <translation>Teile dieser Klausel sind unvollständig oder fehlerhaft.</translation>
    </message>
    <message>
        <source>Add a row below</source>
        <translation>Darunter eine Zeile hinzufügen</translation>
    </message>
    <message>
        <source>Add brackets below</source>
        <translation>Darunter Klammern hinzufügen</translation>
    </message>
    <message>
        <source>Remove this row</source>
        <translation>Diese Zeile entfernen</translation>
    </message>
    <message>
        <source>table</source>
        <translation>Tabelle</translation>
    </message>
    <message>
        <source>alias</source>
        <translation>Alias</translation>
    </message>
    <message>
        <source>join type</source>
        <translation>Verbindungsart</translation>
    </message>
    <message>
        <source>condition</source>
        <translation>Bedingung</translation>
    </message>
    <message>
        <source>columns of the same name</source>
        <translation>gleichnamige Spalten</translation>
    </message>
    <message>
        <source>column</source>
        <translation>Spalte</translation>
    </message>
    <message>
        <source>expression</source>
        <translation>Ausdruck</translation>
    </message>
    <message>
        <source>direction</source>
        <translation>Richtung</translation>
    </message>
    <message>
        <source>AND or OR</source>
        <translation>UND oder ODER</translation>
    </message>
    <message>
        <source>empty subquery</source>
        <translation>leere Unterabfrage</translation>
    </message>
    <message>
        <source>Expression:</source>
        <translation>Ausdruck:</translation>
    </message>
    <message>
        <source>Subquery:</source>
        <translation>Unterabfrage:</translation>
    </message>
    <message>
        <source>NOT</source>
        <translation>NICHT</translation>
    </message>
    <message>
        <source>AND</source>
        <translation>UND</translation>
    </message>
    <message>
        <source>OR</source>
        <translation>ODER</translation>
    </message>
    <message>
        <source>Ascending</source>
        <translation>Aufsteigend</translation>
    </message>
    <message>
        <source>Descending</source>
        <translation>Absteigend</translation>
    </message>
    <message>
        <source>The column of the SELECT list that this one refers to is gone.</source>
        <translation>Die Spalte der SELECT-Liste, auf die sich diese bezieht, gibt es nicht mehr.</translation>
    </message>
    <message>
        <source>The table of this column is no longer in the FROM clause.</source>
        <translation>Die Tabelle dieser Spalte steht nicht mehr in der FROM-Klausel.</translation>
    </message>
    <message>
        <source>No table in the FROM clause goes by the name that this column gives.</source>
        <translation>Keine Tabelle der FROM-Klausel hat den Namen, den diese Spalte nennt.</translation>
    </message>
    <message>
        <source>The table has no column of this name.</source>
        <translation>Die Tabelle hat keine Spalte dieses Namens.</translation>
    </message>
    <message>
        <source>The subquery that this column comes from needs an alias.</source>
        <translation>Die Unterabfrage, aus der diese Spalte kommt, braucht einen Alias.</translation>
    </message>
    <message>
        <source>A subquery in the FROM clause needs an alias.</source>
        <translation>Eine Unterabfrage in der FROM-Klausel braucht einen Alias.</translation>
    </message>
    <message>
        <source>A value is missing here.</source>
        <translation>Hier fehlt ein Wert.</translation>
    </message>
    <message>
        <source>Custom</source>
        <translation>Eigener Text</translation>
    </message>
    <message>
        <source>Only the rows that have a match on both sides.</source>
        <translation>Nur die Zeilen, zu denen es auf beiden Seiten eine passende gibt.</translation>
    </message>
    <message>
        <source>All rows of the left side, with the matching rows of the right side where there are any.</source>
        <translation>Alle Zeilen der linken Seite, dazu die passenden der rechten, wo es welche gibt.</translation>
    </message>
    <message>
        <source>All rows of the right side, with the matching rows of the left side where there are any.</source>
        <translation>Alle Zeilen der rechten Seite, dazu die passenden der linken, wo es welche gibt.</translation>
    </message>
    <message>
        <source>Every row of the left side with every row of the right side. Takes no condition.</source>
        <translation>Jede Zeile der linken Seite mit jeder der rechten. Ohne Bedingung.</translation>
    </message>
    <message>
        <source>All rows of both sides, put together where they match.</source>
        <translation>Alle Zeilen beider Seiten, zusammengefügt, wo sie zueinander passen.</translation>
    </message>
    <message>
        <source>Both sides in a list, separated by a comma: every row with every row, until a WHERE condition chooses among them.</source>
        <translation>Beide Seiten als Liste, durch ein Komma getrennt: jede Zeile mit jeder, bis eine WHERE-Bedingung auswählt.</translation>
    </message>
    <message>
        <source>no operator</source>
        <translation>kein Operator</translation>
    </message>
    <message>
        <source>is like</source>
        <translation>ist wie</translation>
    </message>
    <message>
        <source>is not like</source>
        <translation>ist nicht wie</translation>
    </message>
    <message>
        <source>contains</source>
        <translation>enthält</translation>
    </message>
    <message>
        <source>does not contain</source>
        <translation>enthält nicht</translation>
    </message>
    <message>
        <source>starts with</source>
        <translation>beginnt mit</translation>
    </message>
    <message>
        <source>does not start with</source>
        <translation>beginnt nicht mit</translation>
    </message>
    <message>
        <source>ends with</source>
        <translation>endet mit</translation>
    </message>
    <message>
        <source>does not end with</source>
        <translation>endet nicht mit</translation>
    </message>
    <message>
        <source>is null</source>
        <translation>ist NULL</translation>
    </message>
    <message>
        <source>is not null</source>
        <translation>ist nicht NULL</translation>
    </message>
    <message>
        <source>is empty</source>
        <translation>ist leer</translation>
    </message>
    <message>
        <source>is not empty</source>
        <translation>ist nicht leer</translation>
    </message>
    <message>
        <source>between</source>
        <translation>zwischen</translation>
    </message>
    <message>
        <source>not between</source>
        <translation>nicht zwischen</translation>
    </message>
    <message>
        <source>in list</source>
        <translation>in der Liste</translation>
    </message>
    <message>
        <source>not in list</source>
        <translation>nicht in der Liste</translation>
    </message>
    <message>
        <source>value</source>
        <translation>Wert</translation>
    </message>
    <message>
        <source>operator</source>
        <translation>Operator</translation>
    </message>
    <message>
        <source>click here to add a condition</source>
        <translation>hier klicken, um eine Bedingung anzulegen</translation>
    </message>
    <message>
        <source>Conditions</source>
        <translation>Bedingungen</translation>
    </message>
    <message>
        <source>Add condition</source>
        <translation>Bedingung anfügen</translation>
    </message>
    <message>
        <source>Insert condition</source>
        <translation>Bedingung einfügen</translation>
    </message>
    <message>
        <source>Add brackets</source>
        <translation>Klammer anfügen</translation>
    </message>
    <message>
        <source>Insert brackets</source>
        <translation>Klammer einfügen</translation>
    </message>
    <message>
        <source>Remove</source>
        <translation>Entfernen</translation>
    </message>
    <message>
        <source>Put in brackets</source>
        <translation>In Klammern setzen</translation>
    </message>
    <message>
        <source>Take brackets away</source>
        <translation>Klammern auflösen</translation>
    </message>
    <message>
        <source>Negate (NOT)</source>
        <translation>Verneinen (NOT)</translation>
    </message>
    <message>
        <source>Operator</source>
        <translation>Operator</translation>
    </message>
    <message>
        <source>Move up</source>
        <translation>Nach oben</translation>
    </message>
    <message>
        <source>Move down</source>
        <translation>Nach unten</translation>
    </message>
    <message>
        <source>Values, separated by commas</source>
        <translation>Werte, durch Kommas getrennt</translation>
    </message>
    <message>
        <source>From</source>
        <translation>Von</translation>
    </message>
    <message>
        <source>To</source>
        <translation>Bis</translation>
    </message>
    <message>
        <source>Ctrl+Return applies, Esc cancels</source>
        <translation>Strg+Eingabe übernimmt, Esc verwirft</translation>
    </message>
    <message>
        <source>Kinds of join</source>
        <translation>Arten der Verbindung</translation>
    </message>
    <message>
        <source>OK</source>
        <translation>OK</translation>
    </message>
    <message>
        <source>Add</source>
        <translation>Hinzufügen</translation>
    </message>
    <message>
        <source>Items</source>
        <translation>Einträge</translation>
    </message>
    <message>
        <source>Sources of the query</source>
        <translation>Quellen der Abfrage</translation>
    </message>
    <message>
        <source>click here to add a table</source>
        <translation>hier klicken, um eine Tabelle hinzuzufügen</translation>
    </message>
    <message>
        <source>Insert row</source>
        <translation>Zeile einfügen</translation>
    </message>
    <message>
        <source>Insert bracket</source>
        <translation>Klammer einfügen</translation>
    </message>
    <message>
        <source>Edit as plain text</source>
        <translation>Als Text bearbeiten</translation>
    </message>
    <message>
        <source>Convert to subquery</source>
        <translation>In Unterabfrage umwandeln</translation>
    </message>
    <message>
        <source>Change to %s</source>
        <translation>In %s umwandeln</translation>
    </message>
    <message>
        <source>Group in brackets</source>
        <translation>In Klammern setzen</translation>
    </message>
    <message>
        <source>Ungroup</source>
        <translation>Klammern auflösen</translation>
    </message>
    <message>
        <source>The text is empty. Enter an expression or a subquery.</source>
        <translation>Der Text ist leer. Geben Sie einen Ausdruck oder eine Unterabfrage ein.</translation>
    </message>
    <message>
        <source>Enter the words of the custom join.</source>
        <translation>Geben Sie die Wörter der eigenen Verbindung ein.</translation>
    </message>
    <message>
        <source>This is no list of column names: %s</source>
        <translation>Das ist keine Liste von Spaltennamen: %s</translation>
    </message>
    <message>
        <source>These conditions were removed, since the comma puts their tables out of sight:

%s</source>
        <translation>Diese Bedingungen wurden entfernt, weil das Komma ihre Tabellen außer Sicht bringt:

%s</translation>
    </message>
    <message>
        <source>These conditions name tables that their joins cannot see any more. Change them, or change the brackets back:

%s</source>
        <translation>Diese Bedingungen nennen Tabellen, die ihre Verbindungen nicht mehr sehen. Ändern Sie sie oder stellen Sie die Klammern wieder her:

%s</translation>
    </message>
    <message>
        <source>These expressions are texts that name the table as before. Change them, too:

%s</source>
        <translation>Diese Ausdrücke sind Texte, die die Tabelle noch wie vorher nennen. Ändern Sie auch sie:

%s</translation>
    </message>
    <message>
        <source>The condition names a table that this join cannot see.</source>
        <translation>Die Bedingung nennt eine Tabelle, die diese Verbindung nicht sieht.</translation>
    </message>
    <message>
        <source>This join needs a condition.</source>
        <translation>Dieser Join braucht eine Bedingung.</translation>
    </message>
    <message>
        <source>Without a condition this join compares all columns of the same name (NATURAL).</source>
        <translation>Ohne Bedingung vergleicht dieser Join alle gleichnamigen Spalten (NATURAL).</translation>
    </message>
    <message>
        <source>Without a condition this join combines every row with every row. Give it a condition, or choose CROSS JOIN.</source>
        <translation>Ohne Bedingung verbindet dieser Join jede Zeile mit jeder. Geben Sie ihm eine Bedingung, oder wählen Sie CROSS JOIN.</translation>
    </message>
    <message>
        <source>Move the row up</source>
        <translation>Die Zeile nach oben verschieben</translation>
    </message>
    <message>
        <source>Move the row down</source>
        <translation>Die Zeile nach unten verschieben</translation>
    </message>
    <message>
        <source>No direction</source>
        <translation>Ohne Richtung</translation>
    </message>
    <message>
        <source>Columns of %s</source>
        <translation>Spalten von %s</translation>
    </message>
    <message>
        <source>all columns - click here to choose some</source>
        <translation>alle Spalten - zum Auswählen klicken</translation>
    </message>
    <message>
        <source>click here to group by a column</source>
        <translation>zum Gruppieren nach einer Spalte klicken</translation>
    </message>
    <message>
        <source>click here to sort by a column</source>
        <translation>zum Sortieren nach einer Spalte klicken</translation>
    </message>
    <message>
        <source>Leave out rows that are the same. Needs at least one column in the list.</source>
        <translation>Gleiche Zeilen weglassen. Braucht mindestens eine Spalte in der Liste.</translation>
    </message>
    <message>
        <source>%s (needs a column)</source>
        <translation>%s (braucht eine Spalte)</translation>
    </message>
    <message>
        <source>An option of this query. It stays as long as the box is checked.</source>
        <translation>Eine Option dieser Abfrage. Sie bleibt, solange das Feld angekreuzt ist.</translation>
    </message>
    <message>
        <source>Table</source>
        <translation>Tabelle</translation>
    </message>
    <message>
        <source>Field</source>
        <translation>Feld</translation>
    </message>
    <message>
        <source>Expression</source>
        <translation>Ausdruck</translation>
    </message>
    <message>
        <source>Subquery</source>
        <translation>Unterabfrage</translation>
    </message>
    <message>
        <source>Aggregate</source>
        <translation>Aggregat</translation>
    </message>
    <message>
        <source>none</source>
        <translation>keines</translation>
    </message>
    <message>
        <source>Filter by name</source>
        <translation>Nach Namen filtern</translation>
    </message>
    <message>
        <source>Tables and views</source>
        <translation>Tabellen und Sichten</translation>
    </message>
    <message>
        <source>Fields to choose from</source>
        <translation>Felder zur Auswahl</translation>
    </message>
    <message>
        <source>All</source>
        <translation>Alle</translation>
    </message>
    <message>
        <source>Columns of the SELECT list</source>
        <translation>Spalten der SELECT-Liste</translation>
    </message>
    <message>
        <source>Nothing found</source>
        <translation>Nichts gefunden</translation>
    </message>
    <message>
        <source>Add a table to FROM first</source>
        <translation>Zuerst eine Tabelle in FROM aufnehmen</translation>
    </message>
    <message>
        <source>No tables are known</source>
        <translation>Es sind keine Tabellen bekannt</translation>
    </message>
    <message>
        <source>Nothing to choose from</source>
        <translation>Nichts auszuwählen</translation>
    </message>
    <message>
        <source>For example: price * 2</source>
        <translation>Zum Beispiel: price * 2</translation>
    </message>
    <message>
        <source>For example: SELECT * FROM city</source>
        <translation>Zum Beispiel: SELECT * FROM city</translation>
    </message>
    <message>
        <source>Fields unknown: use Expression</source>
        <translation>Felder unbekannt: Ausdruck eingeben</translation>
    </message>
    <message>
        <source>Overview of the diagram</source>
        <translation>Übersicht des Diagramms</translation>
    </message>
    <message>
        <source>Click or drag to move the view</source>
        <translation>Klicken oder Ziehen bewegt die Ansicht</translation>
    </message>
    <message>
        <source>Diagram</source>
        <translation>Diagramm</translation>
    </message>
    <message>
        <source>The diagram is empty: there is nothing to save</source>
        <translation>Das Diagramm ist leer: es gibt nichts zu speichern</translation>
    </message>
    <message>
        <source>The picture would be too large: choose a smaller scale</source>
        <translation>Das Bild würde zu groß: bitte einen kleineren Maßstab wählen</translation>
    </message>
    <message>
        <source>The picture could not be written to %s</source>
        <translation>Das Bild konnte nicht nach %s geschrieben werden</translation>
    </message>
    <message>
        <source>Custom join</source>
        <translation>Eigener Join</translation>
    </message>
    <message>
        <source>Comma join</source>
        <translation>Komma-Join</translation>
    </message>
    <message>
        <source>INNER JOIN</source>
        <translation>INNER JOIN</translation>
    </message>
    <message>
        <source>LEFT JOIN</source>
        <translation>LEFT JOIN</translation>
    </message>
    <message>
        <source>RIGHT JOIN</source>
        <translation>RIGHT JOIN</translation>
    </message>
    <message>
        <source>CROSS JOIN</source>
        <translation>CROSS JOIN</translation>
    </message>
    <message>
        <source>FULL OUTER JOIN</source>
        <translation>FULL OUTER JOIN</translation>
    </message>
    <message>
        <source>%s: %s and %s</source>
        <translation>%s: %s und %s</translation>
    </message>
    <message>
        <source>All fields</source>
        <translation>Alle Felder</translation>
    </message>
    <message>
        <source>Edit the text</source>
        <translation>Text bearbeiten</translation>
    </message>
    <message>
        <source>Select</source>
        <translation>Auswählen</translation>
    </message>
    <message>
        <source>Add to the selection or take out of it</source>
        <translation>In die Auswahl aufnehmen oder aus ihr nehmen</translation>
    </message>
    <message>
        <source>Open</source>
        <translation>Öffnen</translation>
    </message>
    <message>
        <source>Edit the join</source>
        <translation>Join bearbeiten</translation>
    </message>
    <message>
        <source>Begin a link here, or end it here</source>
        <translation>Hier eine Verbindung beginnen oder beenden</translation>
    </message>
    <message>
        <source>Another source of this query goes by the name %s.</source>
        <translation>Eine andere Quelle dieser Abfrage heißt schon %s.</translation>
    </message>
    <message>
        <source>Kind of join: %s</source>
        <translation>Join-Art: %s</translation>
    </message>
    <message>
        <source>This kind of join takes no condition. The conditions are kept for the case that it becomes another one again, but they are not part of the query: a saved query opens without them.</source>
        <translation>Diese Join-Art hat keine Bedingung. Die Bedingungen bleiben erhalten, falls wieder eine andere daraus wird, gehören aber nicht zur Abfrage: eine gespeicherte Abfrage öffnet sich ohne sie.</translation>
    </message>
    <message>
        <source>Edit the alias</source>
        <translation>Alias bearbeiten</translation>
    </message>
    <message>
        <source>Group by this field</source>
        <translation>Nach diesem Feld gruppieren</translation>
    </message>
    <message>
        <source>Zoom</source>
        <translation>Zoom</translation>
    </message>
    <message>
        <source>Zoom in</source>
        <translation>Vergrößern</translation>
    </message>
    <message>
        <source>Zoom out</source>
        <translation>Verkleinern</translation>
    </message>
    <message>
        <source>Actual size</source>
        <translation>Originalgröße</translation>
    </message>
    <message>
        <source>Add table</source>
        <translation>Tabelle hinzufügen</translation>
    </message>
    <message>
        <source>Remove table</source>
        <translation>Tabelle entfernen</translation>
    </message>
    <message>
        <source>Join tables</source>
        <translation>Tabellen verknüpfen</translation>
    </message>
    <message>
        <source>Change join</source>
        <translation>Verknüpfung ändern</translation>
    </message>
    <message>
        <source>Select field</source>
        <translation>Feld auswählen</translation>
    </message>
    <message>
        <source>Deselect field</source>
        <translation>Feld abwählen</translation>
    </message>
    <message>
        <source>Change SELECT</source>
        <translation>SELECT ändern</translation>
    </message>
    <message>
        <source>Change FROM</source>
        <translation>FROM ändern</translation>
    </message>
    <message>
        <source>Change WHERE</source>
        <translation>WHERE ändern</translation>
    </message>
    <message>
        <source>Change GROUP BY</source>
        <translation>GROUP BY ändern</translation>
    </message>
    <message>
        <source>Change HAVING</source>
        <translation>HAVING ändern</translation>
    </message>
    <message>
        <source>Change ORDER BY</source>
        <translation>ORDER BY ändern</translation>
    </message>
    <message>
        <source>Change LIMIT</source>
        <translation>LIMIT ändern</translation>
    </message>
    <message>
        <source>Change the query</source>
        <translation>Abfrage ändern</translation>
    </message>
    <message>
        <source>Apply SQL text</source>
        <translation>SQL-Text übernehmen</translation>
    </message>
</context>
</TS>
