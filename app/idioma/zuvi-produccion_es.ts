<?xml version="1.0" encoding="utf-8"?>
<!DOCTYPE TS>
<TS version="2.1" language="es">
<!-- Qt texts that the distribution's Spanish files leave in English. -->
<context>
    <name>QPrintSettingsOutput</name>
    <message>
        <source>Pages</source>
        <translation>Páginas</translation>
    </message>
    <message>
        <source>Double Sided Printing</source>
        <translation>Impresión a doble cara</translation>
    </message>
    <message>
        <source>Off</source>
        <translation>No</translation>
    </message>
    <message>
        <source>Long side binding</source>
        <translation>Encuadernación por el lado largo</translation>
    </message>
    <message>
        <source>Short side binding</source>
        <translation>Encuadernación por el lado corto</translation>
    </message>
</context>
<context>
    <name>QPrintPropertiesWidget</name>
    <message>
        <source>Advanced</source>
        <translation>Avanzado</translation>
    </message>
</context>
</TS>
