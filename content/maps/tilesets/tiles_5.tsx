<?xml version="1.0" encoding="UTF-8"?>
<tileset version="1.10" tiledversion="1.10.0" name="water" tilewidth="64" tileheight="32" tilecount="200" columns="10">
 <properties>
  <property name="tiletype" type="int" value="5"/>
  <property name="prefix" value="water"/>
  <property name="pictures" type="int" value="16"/>
 </properties>
 <image source="sheet_5.png" width="640" height="640"/>
</tileset>
