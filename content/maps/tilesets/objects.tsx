<?xml version="1.0" encoding="UTF-8"?>
<tileset version="1.10" tiledversion="1.10.0" name="objects" tilewidth="240" tileheight="230" tilecount="31" columns="0">
 <grid orientation="isometric" width="64" height="32"/>
 <tile id="0">
  <properties>
   <property name="name" value="oak"/>
   <property name="anchor" value="43,152"/>
   <property name="block" value="0,0"/>
   <property name="ground" value="0,0"/>
  </properties>
  <image source="objects/oak.png" width="150" height="184"/>
 </tile>
 <tile id="1">
  <properties>
   <property name="name" value="oak2"/>
   <property name="anchor" value="43,152"/>
   <property name="block" value="0,0"/>
   <property name="ground" value="0,0"/>
  </properties>
  <image source="objects/oak2.png" width="150" height="184"/>
 </tile>
 <tile id="2">
  <properties>
   <property name="name" value="pine"/>
   <property name="anchor" value="20,158"/>
   <property name="block" value="0,0"/>
   <property name="ground" value="0,0"/>
  </properties>
  <image source="objects/pine.png" width="104" height="190"/>
 </tile>
 <tile id="3">
  <properties>
   <property name="name" value="pine2"/>
   <property name="anchor" value="20,158"/>
   <property name="block" value="0,0"/>
   <property name="ground" value="0,0"/>
  </properties>
  <image source="objects/pine2.png" width="104" height="190"/>
 </tile>
 <tile id="4">
  <properties>
   <property name="name" value="deadtree"/>
   <property name="anchor" value="38,138"/>
   <property name="block" value="0,0"/>
   <property name="ground" value="0,0"/>
  </properties>
  <image source="objects/deadtree.png" width="140" height="170"/>
 </tile>
 <tile id="5">
  <properties>
   <property name="name" value="bush"/>
   <property name="anchor" value="10,28"/>
   <property name="block" value="0,0"/>
   <property name="ground" value="0,0"/>
  </properties>
  <image source="objects/bush.png" width="84" height="60"/>
 </tile>
 <tile id="6">
  <properties>
   <property name="name" value="bush_berry"/>
   <property name="anchor" value="10,28"/>
   <property name="block" value="0,0"/>
   <property name="ground" value="0,0"/>
  </properties>
  <image source="objects/bush_berry.png" width="84" height="60"/>
 </tile>
 <tile id="7">
  <properties>
   <property name="name" value="rocks"/>
   <property name="anchor" value="10,20"/>
   <property name="block" value="0,0"/>
   <property name="ground" value="0,0"/>
  </properties>
  <image source="objects/rocks.png" width="84" height="56"/>
 </tile>
 <tile id="8">
  <properties>
   <property name="name" value="boulder"/>
   <property name="anchor" value="23,48"/>
   <property name="block" value="0,0"/>
   <property name="ground" value="0,0"/>
  </properties>
  <image source="objects/boulder.png" width="110" height="84"/>
 </tile>
 <tile id="9">
  <properties>
   <property name="name" value="cottage"/>
   <property name="anchor" value="51,140"/>
   <property name="block" value="0,0;0,1;1,0;1,1;2,0;2,1"/>
   <property name="ground" value="1,2;0,1;1,1;2,1;2,0"/>
  </properties>
  <image source="objects/cottage.png" width="240" height="230"/>
 </tile>
 <tile id="10">
  <properties>
   <property name="name" value="stonehouse"/>
   <property name="anchor" value="51,140"/>
   <property name="block" value="0,0;0,1;1,0;1,1;2,0;2,1"/>
   <property name="ground" value="1,2;0,1;1,1;2,1;2,0"/>
  </properties>
  <image source="objects/stonehouse.png" width="240" height="230"/>
 </tile>
 <tile id="11">
  <properties>
   <property name="name" value="cottage_r"/>
   <property name="anchor" value="125,140"/>
   <property name="block" value="0,0;1,0;0,1;1,1;0,2;1,2"/>
   <property name="ground" value="2,1;1,0;1,1;1,2;0,2"/>
  </properties>
  <image source="objects/cottage_r.png" width="240" height="230"/>
 </tile>
 <tile id="12">
  <properties>
   <property name="name" value="stonehouse_r"/>
   <property name="anchor" value="125,140"/>
   <property name="block" value="0,0;1,0;0,1;1,1;0,2;1,2"/>
   <property name="ground" value="2,1;1,0;1,1;1,2;0,2"/>
  </properties>
  <image source="objects/stonehouse_r.png" width="240" height="230"/>
 </tile>
 <tile id="13">
  <properties>
   <property name="name" value="fence_u"/>
   <property name="anchor" value="4,28"/>
   <property name="block" value="0,0"/>
   <property name="ground" value="0,0"/>
  </properties>
  <image source="objects/fence_u.png" width="72" height="64"/>
 </tile>
 <tile id="14">
  <properties>
   <property name="name" value="fence_v"/>
   <property name="anchor" value="4,28"/>
   <property name="block" value="0,0"/>
   <property name="ground" value="0,0"/>
  </properties>
  <image source="objects/fence_v.png" width="72" height="64"/>
 </tile>
 <tile id="15">
  <properties>
   <property name="name" value="wall_u"/>
   <property name="anchor" value="6,46"/>
   <property name="block" value="0,0"/>
   <property name="ground" value="0,0"/>
  </properties>
  <image source="objects/wall_u.png" width="76" height="84"/>
 </tile>
 <tile id="16">
  <properties>
   <property name="name" value="wall_v"/>
   <property name="anchor" value="6,46"/>
   <property name="block" value="0,0"/>
   <property name="ground" value="0,0"/>
  </properties>
  <image source="objects/wall_v.png" width="76" height="84"/>
 </tile>
 <tile id="17">
  <properties>
   <property name="name" value="well"/>
   <property name="anchor" value="16,76"/>
   <property name="block" value="0,0"/>
   <property name="ground" value="0,0"/>
  </properties>
  <image source="objects/well.png" width="96" height="110"/>
 </tile>
 <tile id="18">
  <properties>
   <property name="name" value="barrels"/>
   <property name="anchor" value="10,36"/>
   <property name="block" value="0,0"/>
   <property name="ground" value="0,0"/>
  </properties>
  <image source="objects/barrels.png" width="84" height="70"/>
 </tile>
 <tile id="19">
  <properties>
   <property name="name" value="crates"/>
   <property name="anchor" value="10,44"/>
   <property name="block" value="0,0"/>
   <property name="ground" value="0,0"/>
  </properties>
  <image source="objects/crates.png" width="84" height="80"/>
 </tile>
 <tile id="20">
  <properties>
   <property name="name" value="signpost"/>
   <property name="anchor" value="4,62"/>
   <property name="block" value="0,0"/>
   <property name="ground" value="0,0"/>
  </properties>
  <image source="objects/signpost.png" width="72" height="96"/>
 </tile>
 <tile id="21">
  <properties>
   <property name="name" value="stall"/>
   <property name="anchor" value="43,50"/>
   <property name="block" value="0,0;1,0"/>
   <property name="ground" value="0,0;1,0"/>
  </properties>
  <image source="objects/stall.png" width="150" height="120"/>
 </tile>
 <tile id="22">
  <properties>
   <property name="name" value="bridge_u"/>
   <property name="anchor" value="4,6"/>
   <property name="block" value=""/>
   <property name="ground" value="0,0;1,0;2,0;3,0"/>
  </properties>
  <image source="objects/bridge_u.png" width="168" height="100"/>
 </tile>
 <tile id="23">
  <properties>
   <property name="name" value="bridge_v"/>
   <property name="anchor" value="100,6"/>
   <property name="block" value=""/>
   <property name="ground" value="0,0;0,1;0,2;0,3"/>
  </properties>
  <image source="objects/bridge_v.png" width="168" height="100"/>
 </tile>
 <tile id="24">
  <properties>
   <property name="name" value="cave"/>
   <property name="anchor" value="80,100"/>
   <property name="block" value="0,0;1,0;2,0;0,-1;1,-1;2,-1"/>
   <property name="ground" value="1,1"/>
  </properties>
  <image source="objects/cave.png" width="230" height="170"/>
 </tile>
 <tile id="25">
  <properties>
   <property name="name" value="ruin"/>
   <property name="anchor" value="43,110"/>
   <property name="block" value="0,0;1,0"/>
   <property name="ground" value="0,0;1,0"/>
  </properties>
  <image source="objects/ruin.png" width="150" height="170"/>
 </tile>
 <tile id="26">
  <properties>
   <property name="name" value="stump"/>
   <property name="anchor" value="4,22"/>
   <property name="block" value="0,0"/>
   <property name="ground" value="0,0"/>
  </properties>
  <image source="objects/stump.png" width="72" height="56"/>
 </tile>
 <tile id="27">
  <properties>
   <property name="name" value="grave"/>
   <property name="anchor" value="4,44"/>
   <property name="block" value="0,0"/>
   <property name="ground" value="0,0"/>
  </properties>
  <image source="objects/grave.png" width="72" height="80"/>
 </tile>
 <tile id="28">
  <properties>
   <property name="name" value="shrine"/>
   <property name="anchor" value="16,82"/>
   <property name="block" value="0,0"/>
   <property name="ground" value="0,0"/>
  </properties>
  <image source="objects/shrine.png" width="96" height="120"/>
 </tile>
 <tile id="29">
  <properties>
   <property name="name" value="reeds"/>
   <property name="anchor" value="4,38"/>
   <property name="block" value=""/>
   <property name="ground" value="0,0"/>
  </properties>
  <image source="objects/reeds.png" width="72" height="72"/>
 </tile>
 <tile id="30">
  <properties>
   <property name="name" value="campfire"/>
   <property name="anchor" value="4,30"/>
   <property name="block" value="0,0"/>
   <property name="ground" value="0,0"/>
  </properties>
  <image source="objects/campfire.png" width="72" height="64"/>
 </tile>
</tileset>
