<?xml version="1.0" encoding="utf-8"?>
<!DOCTYPE TS>
<TS version="2.1" language="fr_FR" sourcelanguage="en">
<context>
    <name>TUMessage</name>
    <message>
        <source>Debug mode : ON</source>
        <translation>Mode de débogage : ACTIVÉ</translation>
    </message>
    <message>
        <source>Debug mode : OFF</source>
        <translation>Mode de débogage : DÉSACTIVÉ</translation>
    </message>
    <message>
        <source>TUMessage::createInstace: Request to allocate a second TUMessage singleton</source>
        <translation>TUMessage::createInstace : demande d’allocation d’un second singleton TUMessage</translation>
    </message>
</context>
<context>
    <name>TULex</name>
    <message>
        <source>Syntax error at line %1:
%2%3 (%4)</source>
        <translation>Erreur de syntaxe à la ligne %1 :
%2%3 (%4)</translation>
    </message>
    <message>
        <source>missing &quot;</source>
        <translation>&quot; manquant</translation>
    </message>
    <message>
        <source>Expecting number.</source>
        <translation>Nombre attendu.</translation>
    </message>
    <message>
        <source>Expecting Y or N while reading %1 </source>
        <translation>Y ou N attendu à la lecture de %1 </translation>
    </message>
    <message>
        <source>Expected float value greater then 0.</source>
        <translation>Valeur décimale supérieure à 0 attendue.</translation>
    </message>
</context>
<context>
    <name>OSW_Execute</name>
    <message>
        <source>OSW_Execute: no application to execute</source>
        <translation>OSW_Execute : aucune application à exécuter</translation>
    </message>
    <message>
        <source>Stdio communication has not been enabled for process</source>
        <translation>La communication par les flux standard n’a pas été activée pour le processus</translation>
    </message>
</context>
</TS>
