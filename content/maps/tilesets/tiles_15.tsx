<?xml version="1.0" encoding="UTF-8"?>
<tileset version="1.10" tiledversion="1.10.0" name="scorch" tilewidth="64" tileheight="32" tilecount="200" columns="10">
 <properties>
  <property name="tiletype" type="int" value="15"/>
  <property name="prefix" value="scorch"/>
  <property name="pictures" type="int" value="10"/>
 </properties>
 <image source="sheet_15.png" width="640" height="640"/>
</tileset>
